// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Whoever looks at a site finds what was served before or what is published now, whole, whenever
// quillon-publish is killed; and the next one is none the worse for it.
#include "server/publish/Site.h"
#include "tests/server/KilledRun.h"
#include "tests/server/SiteFolder.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kFarMoreThanItDoes = 500;

QString version(int number)
{
    return u"1.0.%1"_s.arg(number);
}

} // namespace

class PublishKillTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPublicationMayBeKilledBeforeAnyChange_data();
    void aPublicationMayBeKilledBeforeAnyChange();
    void aRollbackMayBeKilledBeforeAnyChange();
    void aPublicationMayBeKilledAtAnyTime();
    void whoReadsMeanwhileFindsOneOfTheTwo();

private:
    static KilledRun runAndKillPublish(const QStringList &arguments, int count)
    {
        return runAndKill(QStringLiteral(QUILLON_PUBLISH), arguments, count);
    }
    static QString faultOf(const SiteFolder &site, const QStringList &allowed);
    static QString faultOfHistory(const SiteFolder &site);
};

/// What is wrong with what a site serves; empty when it is one of \a allowed, "" for nothing at all.
QString PublishKillTest::faultOf(const SiteFolder &site, const QStringList &allowed)
{
    const QString served = site.servedVersion();
    if (!allowed.contains(served))
        return u"\"%1\" is served"_s.arg(served);
    if (served.isEmpty())
        return QFileInfo(site.path() + u"/served/R2MCU"_s).isSymLink() ? u"a link to nothing"_s : QString();
    if (!site.answer().contains(u"f_remark"_s) || !site.answer().contains(u"f_remark_en"_s))
        return u"half an answer"_s;
    if (!site.servedImage().startsWith(SiteFolder::imageOf(served)))
        return u"another version's image"_s;
    return faultOfHistory(site);
}

QString PublishKillTest::faultOfHistory(const SiteFolder &site)
{
    const publish::Site read(site.path());
    for (const QString &folder : read.foldersOf(u"R2MCU"_s)) {
        const auto published = read.published(u"R2MCU"_s, folder);
        if (!published || !read.isWhole(u"R2MCU"_s, *published))
            return folder + u" is damaged"_s;
        const QDir held(read.historyOf(u"R2MCU"_s) + u'/' + folder);
        if (held.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size() != 3)
            return folder + u" holds more than was published"_s;
    }
    return {};
}

void PublishKillTest::aPublicationMayBeKilledBeforeAnyChange_data()
{
    QTest::addColumn<QString>("former");
    QTest::newRow("the first one") << QString();
    QTest::newRow("a later one") << u"1.0.0"_s;
}

// Each time in a site of its own: what a killed one leaves behind makes the next one's changes others.
void PublishKillTest::aPublicationMayBeKilledBeforeAnyChange()
{
    QFETCH(QString, former);
    int switched = 0;
    for (int count = 1; count < kFarMoreThanItDoes; ++count) {
        const SiteFolder site;
        if (!former.isEmpty())
            QCOMPARE(SiteFolder::run(site.adding(former)).status, 0);
        const KilledRun end = runAndKillPublish(site.adding(u"1.0.1"_s), count);
        if (end == KilledRun::Untraceable)
            QSKIP("this system lets nobody trace a program");
        QCOMPARE(faultOf(site, {end == KilledRun::Finished ? u"1.0.1"_s : former, u"1.0.1"_s}), QString());
        switched += site.servedVersion() == u"1.0.1";
        QCOMPARE(SiteFolder::run(site.adding(u"1.0.2"_s)).status, 0);
        QCOMPARE(faultOf(site, {u"1.0.2"_s}), QString());
        QVERIFY(!QFileInfo::exists(site.path() + u"/published/R2MCU/unfinished"_s));
        if (end == KilledRun::Finished) {
            // Once it is switched nothing but a look at the disk and a word about it are left to do.
            QVERIFY2(count > 20 && switched >= 2 && switched <= 5,
                     qPrintable(u"%1, %2"_s.arg(count).arg(switched)));
            return;
        }
    }
    QFAIL("it never finishes");
}

void PublishKillTest::aRollbackMayBeKilledBeforeAnyChange()
{
    const SiteFolder site;
    for (const QString &version : {u"1.0.0"_s, u"1.1.0"_s})
        QCOMPARE(SiteFolder::run(site.adding(version)).status, 0);
    for (int count = 1; count < kFarMoreThanItDoes; ++count) {
        const KilledRun end = runAndKillPublish(site.rollingBack(), count);
        if (end == KilledRun::Untraceable)
            QSKIP("this system lets nobody trace a program");
        QCOMPARE(faultOf(site, {u"1.0.0"_s, u"1.1.0"_s}), QString());
        if (site.servedVersion() == u"1.0.0")
            return;
    }
    QFAIL("it never finishes");
}

// A large image, so that most of the time it is being copied.
void PublishKillTest::aPublicationMayBeKilledAtAnyTime()
{
    constexpr int kRounds = 12;
    constexpr int kImageSize = 2 * 1024 * 1024;
    const SiteFolder site;
    const auto adding = [&site](int number) {
        const QStringList arguments = site.adding(version(number));
        writeFile(arguments.last(), SiteFolder::imageOf(version(number)).leftJustified(kImageSize));
        return arguments;
    };
    QElapsedTimer whole;
    const QStringList first = adding(0);
    whole.start();
    QCOMPARE(SiteFolder::run(first).status, 0);
    const auto limit = int(whole.nsecsElapsed() / 1000 * 5 / 4);
    for (int round = 1; round <= kRounds; ++round) {
        const QString former = site.servedVersion();
        QProcess process;
        process.start(QStringLiteral(QUILLON_PUBLISH), adding(round));
        QVERIFY(process.waitForStarted());
        const int moment = QRandomGenerator::global()->bounded(limit);
        ::usleep(uint(moment));
        process.kill();
        process.waitForFinished();
        const QString fault = faultOf(site, {former, version(round)});
        QVERIFY2(fault.isEmpty(), qPrintable(u"killed after %1 µs: %2"_s.arg(moment).arg(fault)));
    }
    QCOMPARE(SiteFolder::run(adding(kRounds + 1)).status, 0);
    QCOMPARE(faultOf(site, {version(kRounds + 1)}), QString());
}

// A web server opens the link anew for each request.
void PublishKillTest::whoReadsMeanwhileFindsOneOfTheTwo()
{
    const SiteFolder site;
    QCOMPARE(SiteFolder::run(site.adding(version(0))).status, 0);
    for (int round = 1; round <= 5; ++round) {
        QProcess process;
        process.start(QStringLiteral(QUILLON_PUBLISH), site.adding(version(round)));
        while (!process.waitForFinished(0)) {
            const QString now = site.servedVersion();
            QVERIFY2(now == version(round - 1) || now == version(round), qPrintable(now));
            QVERIFY(!site.servedImage().isEmpty());
        }
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(site.servedVersion(), version(round));
    }
}

QUILLON_TEST_CORE(PublishKillTest)
#include "tst_publish_kill.moc"
