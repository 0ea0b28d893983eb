// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/ModelTable.h"
#include "net/VersionAnswer.h"
#include "server/publish/Project.h"
#include "server/publish/Release.h"
#include "tests/server/SiteFolder.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class PublishTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFirmwareOfThePanelHasAProject();
    void aVersionIsThreeNumbers_data();
    void aVersionIsThreeNumbers();
    void aWrongCommandLineIsRefused_data();
    void aWrongCommandLineIsRefused();
    void helpNamesEveryCommandAndOption();
    void thePanelReadsWhatWasPublished();
    void notesThatAreNotUtf8AreRefused_data();
    void notesThatAreNotUtf8AreRefused();
    void anEmptyImageIsRefused();
    void aVersionThatIsNotNewerIsRefused_data();
    void aVersionThatIsNotNewerIsRefused();
    void forcePublishesItAllTheSame();
    void whatWasPublishedBeforeIsKept();
    void aRollbackServesWhatWasServedBefore();
    void aRollbackPassesOverWhatWasWithdrawn();
    void aRollbackToADamagedImageIsRefused();
    void nothingToRollBackToIsSaid();
    void statusTellsWhatIsServed();
    void statusNoticesDamage_data();
    void statusNoticesDamage();
    void anotherPublisherIsWaitedForByNobody();
    void everybodyMayReadWhateverTheUmask();
    void aSiteThatCannotBeWrittenIsSaid();

private:
    const SiteFolder m_site{}; // where nothing is ever published
};

void PublishTest::everyFirmwareOfThePanelHasAProject()
{
    QStringList asked;
    for (const auto &row : QuillonFirmwareUpgrade::modelRows())
        asked << row.pc.versionPath << row.otg.versionPath;
    QStringList filled;
    for (const publish::Project &project : publish::projects())
        filled << u"/upinfo_test.aspx?proj_name="_s + project.name;
    QCOMPARE(filled, asked);
}

void PublishTest::aVersionIsThreeNumbers_data()
{
    QTest::addColumn<bool>("accepted");
    for (const char *version : {"0.0.0", "1.2.0", "1.10.0", "65535.65535.65535"})
        QTest::newRow(version) << true;
    for (const char *version :
         {"", "1", "1.2", "1.2.3.4", "1.2.x", "v1.2.0", "1.2.0 ", " 1.2.0", "1.2.0\n", "1..2", "1.2.",
          "-1.2.0", "+1.2.0", "1.02.0", "1.2.65536", "99999999999.0.0", "1.2.0-rc1", "١.٢.٠"})
        QTest::newRow(version) << false;
}

void PublishTest::aVersionIsThreeNumbers()
{
    QTEST(publish::versionFrom(QString::fromUtf8(QTest::currentDataTag())).has_value(), "accepted");
}

void PublishTest::aWrongCommandLineIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    const QStringList sound = m_site.adding(u"1.2.0"_s);
    const auto without = [&sound](const QString &option) {
        QStringList arguments = sound;
        arguments.removeIf([&option](const QString &word) { return word.startsWith(option); });
        return arguments;
    };
    const auto with = [&sound](const QString &option) { return QStringList(sound) << option; };
    QTest::newRow("nothing") << QStringList() << u"a folder and one of add, status and rollback"_s;
    QTest::newRow("no command") << QStringList{u"site"_s} << u"a folder and one of"_s;
    QTest::newRow("a command that is none")
        << QStringList{u"site"_s, u"publish"_s} << u"a folder and one of"_s;
    QTest::newRow("a word too many") << QStringList{u"site"_s, u"status"_s, u"now"_s}
                                     << u"unexpected argument \"now\""_s;
    QTest::newRow("an option that is none") << QStringList{u"--colour"_s} << u"Unknown option 'colour'"_s;
    QTest::newRow("no model") << without(u"--model"_s) << u"--model is missing"_s;
    QTest::newRow("no chip") << without(u"--chip"_s) << u"--chip is missing"_s;
    QTest::newRow("no version") << without(u"--version"_s) << u"--version is missing"_s;
    QTest::newRow("no English notes") << without(u"--notes-en"_s) << u"--notes-en is missing"_s;
    QTest::newRow("no Chinese notes") << without(u"--notes-zh"_s) << u"--notes-zh is missing"_s;
    QTest::newRow("no image") << without(sound.last()) << u"which image?"_s;
    QTest::newRow("a model that is none")
        << with(u"--model=R3"_s) << u"there is no R3 pc; --model takes R1 or R2"_s;
    QTest::newRow("a version of two numbers")
        << with(u"--version=1.2"_s) << u"--version takes three numbers"_s;
    QTest::newRow("notes that are not there") << with(u"--notes-en=/nowhere/en"_s) << u"/nowhere/en: "_s;
    QTest::newRow("an image that is a folder")
        << QStringList(without(sound.last()) << u"/"_s) << u"/ cannot be read"_s;
    QTest::newRow("a rollback of nothing in particular")
        << QStringList{u"site"_s, u"rollback"_s} << u"--model is missing"_s;
}

void PublishTest::aWrongCommandLineIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const ProgramRun run = SiteFolder::run(arguments);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QString());
    QVERIFY2(run.errors.startsWith(u"quillon-publish: " + complaint), qPrintable(run.errors));
    QCOMPARE(run.errors.count(u'\n'), 1);
    QVERIFY(!QFileInfo::exists(m_site.path()));
}

void PublishTest::helpNamesEveryCommandAndOption()
{
    const ProgramRun run = SiteFolder::run({u"--help"_s});
    QCOMPARE(run.status, 0);
    for (const char *word : {"add IMAGE", "status", "rollback", "--model", "--chip", "--version",
                             "--notes-en", "--notes-zh", "--force"})
        QVERIFY2(run.output.contains(QLatin1StringView(word)), word);
}

void PublishTest::thePanelReadsWhatWasPublished()
{
    const SiteFolder site;
    const ProgramRun run = SiteFolder::run(site.adding(u"1.2.0"_s));
    QVERIFY2(run.status == 0, qPrintable(run.errors));
    QCOMPARE(run.output, u"R2 pc: 1.2.0 is served now\n"_s);
    QCOMPARE(site.servedImage(), SiteFolder::imageOf(u"1.2.0"_s));
    const auto answer = VersionAnswer::read(contentOf(site.served(u"version.json"_s)));
    QVERIFY(answer);
    QCOMPARE(answer->version, u"1.2.0"_s);
    QCOMPARE(answer->notes, u"更好。"_s);
    QCOMPARE(answer->notesInEnglish, u"Better."_s);
}

void PublishTest::notesThatAreNotUtf8AreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("Latin-1") << QByteArray("sch\xf6n");
    QTest::newRow("GBK") << QByteArray("\xb8\xfc\xba\xc3");
    QTest::newRow("cut in a character") << QByteArray("\xe6\x9b");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe\x42\x00", 4);
    QTest::newRow("an overlong slash") << QByteArray("\xc0\xaf");
}

void PublishTest::notesThatAreNotUtf8AreRefused()
{
    QFETCH(QByteArray, bytes);
    const SiteFolder site;
    const QString file = site.file(u"strange.txt"_s, bytes);
    for (const QString &option : {u"--notes-en="_s, u"--notes-zh="_s}) {
        const ProgramRun run = SiteFolder::run(site.adding(u"1.2.0"_s, {option + file}));
        QCOMPARE(run.status, 2);
        QVERIFY2(run.errors.contains(file + u" is not UTF-8"), qPrintable(run.errors));
    }
    QVERIFY(!QFileInfo::exists(site.path()));
}

void PublishTest::anEmptyImageIsRefused()
{
    const SiteFolder site;
    QStringList arguments = site.adding(u"1.2.0"_s);
    writeFile(arguments.last(), {});
    const ProgramRun run = SiteFolder::run(arguments);
    QCOMPARE(run.status, 2);
    QVERIFY2(run.errors.contains(u" is empty"), qPrintable(run.errors));
    QVERIFY(!QFileInfo::exists(site.path()));
}

void PublishTest::aVersionThatIsNotNewerIsRefused_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("1.2.0") << 1;
    QTest::newRow("1.1.9") << 1;
    QTest::newRow("0.9.0") << 1;
    QTest::newRow("1.2.1") << 0;
    QTest::newRow("1.10.0") << 0;
    QTest::newRow("2.0.0") << 0;
}

void PublishTest::aVersionThatIsNotNewerIsRefused()
{
    const SiteFolder site;
    const QString version = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
    const ProgramRun run = SiteFolder::run(site.adding(version));
    QTEST(run.status, "status");
    QCOMPARE(run.errors.contains(u"--force"), run.status != 0);
    QCOMPARE(site.servedVersion(), run.status == 0 ? version : u"1.2.0"_s);
}

void PublishTest::forcePublishesItAllTheSame()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
    QCOMPARE(SiteFolder::run(site.adding(u"1.1.9"_s, {u"--force"_s})).status, 0);
    QCOMPARE(site.servedVersion(), u"1.1.9"_s);
    // The same version with another image, too: which one is served is another question than what it is
    // called.
    QStringList again = site.adding(u"1.1.9"_s, {u"--force"_s});
    writeFile(again.at(again.size() - 2), "another image");
    QCOMPARE(SiteFolder::run(again).status, 0);
    QCOMPARE(site.servedImage(), QByteArray("another image"));
}

void PublishTest::whatWasPublishedBeforeIsKept()
{
    const SiteFolder site;
    for (const QString &version : {u"1.1.1"_s, u"1.2.0"_s, u"1.10.0"_s})
        QCOMPARE(SiteFolder::run(site.adding(version)).status, 0);
    const QDir history(site.path() + u"/published/R2MCU"_s);
    const QStringList expected{u"00001-1.1.1"_s, u"00002-1.2.0"_s, u"00003-1.10.0"_s};
    QCOMPARE(history.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name), expected);
    QCOMPARE(contentOf(history.filePath(u"00001-1.1.1/firmware.bin"_s)), SiteFolder::imageOf(u"1.1.1"_s));
}

void PublishTest::aRollbackServesWhatWasServedBefore()
{
    const SiteFolder site;
    for (const QString &version : {u"1.1.1"_s, u"1.2.0"_s, u"1.3.0"_s})
        QCOMPARE(SiteFolder::run(site.adding(version)).status, 0);
    for (const QString &version : {u"1.2.0"_s, u"1.1.1"_s}) {
        const ProgramRun run = SiteFolder::run(site.rollingBack());
        QVERIFY2(run.status == 0, qPrintable(run.errors));
        QCOMPARE(run.output, u"R2 pc: %1 is served again\n"_s.arg(version));
        QCOMPARE(site.servedVersion(), version);
        QCOMPARE(site.servedImage(), SiteFolder::imageOf(version));
    }
}

void PublishTest::aRollbackPassesOverWhatWasWithdrawn()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.adding(u"1.1.1"_s)).status, 0);
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
    QCOMPARE(SiteFolder::run(site.rollingBack()).status, 0);
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.1"_s)).status, 0);
    QCOMPARE(SiteFolder::run(site.rollingBack()).status, 0);
    QCOMPARE(site.servedVersion(), u"1.1.1"_s);
}

void PublishTest::aRollbackToADamagedImageIsRefused()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.adding(u"1.1.1"_s)).status, 0);
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
    writeFile(site.path() + u"/published/R2MCU/00001-1.1.1/firmware.bin"_s, "image 1.1.0");
    const ProgramRun run = SiteFolder::run(site.rollingBack());
    QCOMPARE(run.status, 1);
    QVERIFY2(run.errors.contains(u"00001-1.1.1 is damaged or gone"), qPrintable(run.errors));
    QCOMPARE(site.servedVersion(), u"1.2.0"_s);
}

void PublishTest::nothingToRollBackToIsSaid()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.rollingBack()).status, 1);
    QCOMPARE(SiteFolder::run(site.adding(u"1.1.1"_s)).status, 0);
    const ProgramRun run = SiteFolder::run(site.rollingBack());
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errors, u"quillon-publish: nothing was published before 1.1.1\n"_s);
    QCOMPARE(site.servedVersion(), u"1.1.1"_s);
}

void PublishTest::statusTellsWhatIsServed()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run({site.path(), u"status"_s}).status, 1);
    QCOMPARE(SiteFolder::run(site.adding(u"1.1.1"_s)).status, 0);
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
    const ProgramRun run = SiteFolder::run({site.path(), u"status"_s});
    QCOMPARE(run.status, 0);
    const QStringList lines = run.output.trimmed().split(u'\n');
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(0), u"R1 pc  nothing is published"_s);
    QVERIFY2(lines.at(2).startsWith(u"R2 pc  1.2.0 since "_s), qPrintable(lines.at(2)));
    QVERIFY2(lines.at(2).contains(u" UTC, 11 bytes, SHA-256 "_s), qPrintable(lines.at(2)));
    QVERIFY2(lines.at(2).endsWith(u"; before it 1.1.1"_s), qPrintable(lines.at(2)));
}

void PublishTest::statusNoticesDamage_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("the image") << u"firmware.bin"_s;
    QTest::newRow("the answer") << u"version.json"_s;
    QTest::newRow("what is known of it") << u"about.json"_s;
}

void PublishTest::statusNoticesDamage()
{
    QFETCH(QString, file);
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
    writeFile(site.served(file), "oh");
    const ProgramRun run = SiteFolder::run({site.path(), u"status"_s});
    QCOMPARE(run.status, 1);
    QVERIFY2(run.output.contains(u"; DAMAGED\n"_s), qPrintable(run.output));
}

void PublishTest::anotherPublisherIsWaitedForByNobody()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.adding(u"1.1.1"_s)).status, 0);
    const int lock = ::open(QFile::encodeName(site.path() + u"/lock"_s).constData(), O_RDWR);
    QCOMPARE(::flock(lock, LOCK_EX), 0);
    for (const QStringList &arguments : {site.adding(u"1.2.0"_s), site.rollingBack()}) {
        const ProgramRun run = SiteFolder::run(arguments);
        QCOMPARE(run.status, 1);
        QVERIFY2(run.errors.contains(u"another quillon-publish is at work"_s), qPrintable(run.errors));
    }
    ::close(lock);
    QCOMPARE(site.servedVersion(), u"1.1.1"_s);
    QCOMPARE(SiteFolder::run(site.adding(u"1.2.0"_s)).status, 0);
}

// A web server is another user than whoever publishes.
void PublishTest::everybodyMayReadWhateverTheUmask()
{
    const SiteFolder site;
    const ProgramRun run = ProgramRun::with(
        u"sh"_s,
        QStringList{u"-c"_s, u"umask 077; exec \"$0\" \"$@\""_s, QStringLiteral(QUILLON_PUBLISH)}
            + site.adding(u"1.2.0"_s));
    QVERIFY2(run.status == 0, qPrintable(run.errors));
    for (const QString &file : {u"firmware.bin"_s, u"version.json"_s})
        QVERIFY(QFile::permissions(site.served(file)) & QFile::ReadOther);
    for (const QString &folder :
         {u""_s, u"/served"_s, u"/published"_s, u"/published/R2MCU"_s, u"/published/R2MCU/00001-1.2.0"_s})
        QVERIFY2(QFile::permissions(site.path() + folder) & QFile::ExeOther, qPrintable(folder));
}

void PublishTest::aSiteThatCannotBeWrittenIsSaid()
{
    const SiteFolder site;
    site.file(u"site"_s, "a file is in the way");
    const ProgramRun run = SiteFolder::run(site.adding(u"1.2.0"_s));
    QCOMPARE(run.status, 1);
    QVERIFY2(run.errors.contains(site.path()), qPrintable(run.errors));
}

QUILLON_TEST_CORE(PublishTest)
#include "tst_publish.moc"
