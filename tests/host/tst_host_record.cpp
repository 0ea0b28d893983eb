// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/host/HostRun.h"
#include "tests/host/ScenarioFile.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

// One recorded run, looked at from several sides.
class HostRecordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void eachScreenHasOnePicture();
    void picturesShowThePanel();
    void aPictureCanBeAskedFor();
    void theLogIsPlainTextWithTimes();
    void theLogTellsWhatHappenedInOrder_data();
    void theLogTellsWhatHappenedInOrder();
    void theTerminalTellsTheProgress();

private:
    QTemporaryDir m_folder;
    HostRun m_run;
    QStringList m_log;
};

void HostRecordTest::initTestCase()
{
    const ScenarioFile scenario(
        "device R2 pc 1.1.1 otg 1.1.1\nserver pc 1.2.0 otg 1.2.0\npause 300ms\nplug pc\n"
        "wait screen upgrade-available\nhold screen upgrade-available 1s\nlanguage en\npause 300ms\n"
        "picture in-english\nsay \"here we go\"\nclick upgrade\nwait screen waiting-pc\npause 300ms\n");
    m_run = HostRun::with({u"--simulate"_s, u"--headless"_s, u"--scenario"_s, scenario.path, u"--record"_s,
                           m_folder.filePath(u"deep/down"_s)});
    QVERIFY2(m_run.status == 0, qPrintable(m_run.errors));

    QFile log(m_folder.filePath(u"deep/down/log.txt"_s));
    QVERIFY(log.open(QIODevice::ReadOnly));
    m_log = QString::fromUtf8(log.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

void HostRecordTest::eachScreenHasOnePicture()
{
    const QStringList pictures
        = QDir(m_folder.filePath(u"deep/down"_s)).entryList({u"screen-*.png"_s}, QDir::Files, QDir::Name);
    const QStringList expected{u"screen-01-searching.png"_s, u"screen-02-upgrade-available.png"_s,
                               u"screen-03-waiting-pc.png"_s};
    QCOMPARE(pictures, expected);
}

void HostRecordTest::picturesShowThePanel()
{
    const QDir folder(m_folder.filePath(u"deep/down"_s));
    const QColor bar = QImage(folder.filePath(u"screen-02-upgrade-available.png"_s)).pixelColor(60, 370);
    QCOMPARE(bar, QColor(87, 110, 246));
    const QStringList pictures = folder.entryList({u"*.png"_s}, QDir::Files);
    for (const QString &name : pictures) {
        const QImage picture(folder.filePath(name));
        QCOMPARE(picture.size(), QSize(472, 418));
        QCOMPARE(picture.pixelColor(20, 60), QColor(31, 32, 40));
    }
}

void HostRecordTest::aPictureCanBeAskedFor()
{
    const QImage english(m_folder.filePath(u"deep/down/in-english.png"_s));
    const QImage chinese(m_folder.filePath(u"deep/down/screen-02-upgrade-available.png"_s));
    QVERIFY(!english.isNull());
    QVERIFY(english != chinese);
}

void HostRecordTest::theLogIsPlainTextWithTimes()
{
    static const QRegularExpression form(u"^ *([0-9]+\\.[0-9]{3})  [a-z ]{12} .*$"_s);
    double latest = 0;
    for (const QString &line : std::as_const(m_log)) {
        const QRegularExpressionMatch match = form.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        QVERIFY2(match.captured(1).toDouble() >= latest, qPrintable(line));
        latest = match.captured(1).toDouble();
    }
}

void HostRecordTest::theLogTellsWhatHappenedInOrder_data()
{
    QTest::addColumn<QStringList>("happened");
    QTest::newRow("screens") << QStringList{
        u"screen       searching"_s,         u"device       PC interface appeared"_s,
        u"screen       upgrade-available"_s, u"scenario     here we go"_s,
        u"screen       waiting-pc"_s,        u"scenario     passed"_s};
    // The OTG version alone can bring the bar, before or after the PC version is compared.
    QTest::newRow("versions") << QStringList{
        u"device       PC interface appeared"_s, u"hid          DEVICE PC VERSION"_s,
        u"host         compared: 1.2.0, upgrade needed"_s, u"scenario     here we go"_s};
}

void HostRecordTest::theLogTellsWhatHappenedInOrder()
{
    QFETCH(QStringList, happened);
    qsizetype from = 0;
    for (const QString &what : happened) {
        const auto found = std::find_if(m_log.cbegin() + from, m_log.cend(),
                                        [&what](const QString &line) { return line.contains(what); });
        QVERIFY2(found != m_log.cend(), qPrintable(what));
        from = found - m_log.cbegin();
    }
}

void HostRecordTest::theTerminalTellsTheProgress()
{
    const QStringList lines = m_run.output.split(u'\n', Qt::SkipEmptyParts);
    QVERIFY(lines.contains(u"here we go"_s));
    QVERIFY(lines.filter(u"screen: "_s).size() == 3);
    QVERIFY(lines.filter(u"x.scn:"_s).isEmpty());
    QVERIFY2(lines.first().endsWith(m_folder.filePath(u"deep/down"_s)), qPrintable(lines.first()));
}

QUILLON_TEST_CORE(HostRecordTest)
#include "tst_host_record.moc"
