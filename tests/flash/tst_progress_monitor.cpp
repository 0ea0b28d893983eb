// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// One poll of the progress file while the tool works: what is ignored, what is shown, what counts as a stall.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;

class ProgressMonitorTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void thePathIsBelowTheHome();
    void withoutAReportOnlyAnEndedRunFails_data();
    void withoutAReportOnlyAnEndedRunFails();
    void otherLinesAreIgnored_data();
    void otherLinesAreIgnored();
    void percentagesAreShown_data();
    void percentagesAreShown();
    void strangePercentagesAreShownAsTheyAre_data();
    void strangePercentagesAreShownAsTheyAre();
    void percentagesNeedABar();
    void aHalfWrittenLineIsCorrected();
};

void ProgressMonitorTest::thePathIsBelowTheHome()
{
    const QString folder = stage().sandbox.home() + u"/AppData/Roaming/OrvikQuillon2x2"_s;
    for (int call = 0; call < 2; ++call) {
        QVERIFY(QDir(folder).removeRecursively());
        QCOMPARE(panel().progressFile(), QString(folder + u"/Firmware_bin.txt"_s));
        QVERIFY(QFileInfo(folder).isDir());
    }
}

void ProgressMonitorTest::withoutAReportOnlyAnEndedRunFails_data()
{
    QTest::addColumn<bool>("isEmpty");
    QTest::addColumn<bool>("isUpgrading");
    QTest::addColumn<bool>("isToolRunning");
    QTest::addColumn<QString>("line");
    const QString noFile = u"[状态] 进程已退出但无进度文件，判定为失败"_s;
    const QString emptyFile = u"[状态] 进程已退出但进度文件为空，判定为失败"_s;
    QTest::newRow("no file, the tool has ended") << false << true << false << noFile;
    QTest::newRow("no file, the tool is starting") << false << true << true << QString();
    QTest::newRow("no file, no run") << false << false << false << QString();
    QTest::newRow("no file, no run but a tool") << false << false << true << QString();
    QTest::newRow("an empty file, the tool has ended") << true << true << false << emptyFile;
    QTest::newRow("an empty file, the tool is starting") << true << true << true << QString();
    QTest::newRow("an empty file, no run") << true << false << false << QString();
    QTest::newRow("an empty file, no run but a tool") << true << false << true << QString();
}

void ProgressMonitorTest::withoutAReportOnlyAnEndedRunFails()
{
    QFETCH(bool, isEmpty);
    QFETCH(bool, isUpgrading);
    QFETCH(bool, isToolRunning);
    QFETCH(QString, line);
    if (isToolRunning)
        QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    panel().pretendUpgrading(isUpgrading);
    if (isEmpty)
        stage().sandbox.writeProgress({});
    const QStringList state = panel().state();
    stage().log.clear();
    panel().pollProgress();
    QCOMPARE(stage().log.lines(), line.isEmpty() ? QStringList() : QStringList(line));
    QCOMPARE(panel().pollTimer()->isActive(), line.isEmpty());
    QCOMPARE(stage().showsFailure(), !line.isEmpty());
    QCOMPARE(panel().state() == state, line.isEmpty());
    QCOMPARE(stage().isToolRunning(), isToolRunning);
}

void ProgressMonitorTest::otherLinesAreIgnored_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("a word") << "erasing flash\n"_ba;
    QTest::newRow("a blank last line") << "55%\n\n"_ba;
    QTest::newRow("half a result") << "55%\nsucc"_ba;
    QTest::newRow("a result in capitals") << "SUCCESS 1"_ba;
    QTest::newRow("a fraction") << "5.5%"_ba;
    QTest::newRow("a number without %") << "55"_ba;
    QTest::newRow("only a %") << "%"_ba;
    QTest::newRow("a number beyond all numbers") << "4294967396%"_ba;
    QTest::newRow("zero bytes") << QByteArray(5000, '\0');
    QTest::newRow("a program") << QByteArray::fromHex(
        "7f454c4602010100000000000000000003003e0001000000ff25e22f");
    QTest::newRow("two bytes a character") << QByteArray::fromHex("350035002500");
    QTest::newRow("no text in any encoding") << QByteArray::fromHex("fffefdfc80818283c0c1f5f8");
}

void ProgressMonitorTest::otherLinesAreIgnored()
{
    QFETCH(QByteArray, content);
    for (const bool isToolRunning : {false, true}) {
        if (isToolRunning)
            QVERIFY(stage().runSilentTool());
        stage().beginRun(UpgradePlan::PcOnly);
        const QStringList state = panel().state();
        const QStringList screen = Screen::everything(panel());
        stage().log.clear();
        stage().poll(content);
        QCOMPARE(stage().log.lines(), QStringList());
        QCOMPARE(panel().state(), state);
        QCOMPARE(Screen::everything(panel()), screen);
        QVERIFY(panel().pollTimer()->isActive());
        QVERIFY(panel().watchdog()->isActive());
        QCOMPARE(stage().isToolRunning(), isToolRunning);
    }
}

void ProgressMonitorTest::percentagesAreShown_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcCompleted");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("displayed");
    const QByteArray lines = "10%\n55%"_ba;
    QTest::newRow("PC only") << UpgradePlan::PcOnly << false << lines << 55 << 55;
    QTest::newRow("OTG only") << UpgradePlan::OtgOnly << false << lines << 55 << 55;
    QTest::newRow("the PC half of both") << UpgradePlan::Both << false << lines << 55 << 27;
    QTest::newRow("the OTG half of both") << UpgradePlan::Both << true << lines << 55 << 77;
    QTest::newRow("no plan") << UpgradePlan::None << false << lines << 55 << 55;
    QTest::newRow("OTG only, after a PC half") << UpgradePlan::OtgOnly << true << lines << 55 << 55;
    QTest::newRow("the PC half at 0") << UpgradePlan::Both << false << "0%"_ba << 0 << 0;
    QTest::newRow("the PC half at 1") << UpgradePlan::Both << false << "1%"_ba << 1 << 0;
    QTest::newRow("the PC half at 99") << UpgradePlan::Both << false << "99%"_ba << 99 << 49;
    QTest::newRow("the OTG half at 0") << UpgradePlan::Both << true << "0%"_ba << 0 << 50;
    QTest::newRow("the OTG half at 1") << UpgradePlan::Both << true << "1%"_ba << 1 << 50;
    QTest::newRow("the OTG half at 99") << UpgradePlan::Both << true << "99%"_ba << 99 << 99;
    QTest::newRow("PC only at 0") << UpgradePlan::PcOnly << false << "0%"_ba << 0 << 0;
    QTest::newRow("CR LF") << UpgradePlan::PcOnly << false << "10%\r\n55%\r\n"_ba << 55 << 55;
    QTest::newRow("blanks around it") << UpgradePlan::PcOnly << false << "  55%  \n"_ba << 55 << 55;
}

void ProgressMonitorTest::percentagesAreShown()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcCompleted);
    QFETCH(QByteArray, content);
    QFETCH(int, percent);
    QFETCH(int, displayed);
    stage().beginRun(plan, pcCompleted);
    panel().bar()->setProgressColor(FlashingStage::kNeutral);
    panel().bar()->setValue(88);
    stage().log.clear();
    stage().poll(content);
    QCOMPARE(stage().percentOnBar(), displayed);
    QCOMPARE(stage().percentText(), QString::number(displayed) + u'%');
    const QString flag = pcCompleted ? u"true"_s : u"false"_s;
    QCOMPARE(stage().log.lines(),
             (QStringList{u"[onReadFirmwareTxt] percent= %1  displayPercent= %2  progressColor=red? false  "
                          "pcUpgradeCompleted= %3"_s.arg(percent)
                              .arg(displayed)
                              .arg(flag),
                          u"[onReadFirmwareTxt] 界面切换条件= false"_s}));
    QVERIFY(panel().pollTimer()->isActive());
    QVERIFY(panel().watchdog()->isActive());
}

void ProgressMonitorTest::strangePercentagesAreShownAsTheyAre_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    QTest::newRow("more than everything") << "250%"_ba << u"250%"_s;
    QTest::newRow("less than nothing") << "-3%"_ba << u"-3%"_s;
    QTest::newRow("the largest number") << "2147483647%"_ba << u"2147483647%"_s;
}

void ProgressMonitorTest::strangePercentagesAreShownAsTheyAre()
{
    QFETCH(QByteArray, content);
    stage().beginRun(UpgradePlan::PcOnly);
    stage().poll(content);
    QTEST(stage().percentText(), "text");
    QVERIFY(stage().percentOnBar() >= 0 && stage().percentOnBar() <= 100);
}

void ProgressMonitorTest::percentagesNeedABar()
{
    stage().beginRun(UpgradePlan::PcOnly);
    const Without withoutBar(panel(), Part::Bar);
    const QStringList state = panel().state();
    stage().log.clear();
    stage().poll("55%");
    QCOMPARE(panel().state(), state);
    QCOMPARE(stage().log.lines(), QStringList());
}

void ProgressMonitorTest::aHalfWrittenLineIsCorrected()
{
    stage().beginRun(UpgradePlan::PcOnly);
    for (const char *content : {"10%\n5", "10%\n", "10%\n55", "10%\n55%"})
        stage().poll(content);
    QCOMPARE(stage().percentText(), u"55%"_s);
    stage().poll("55%\nsuccess");
    QVERIFY(stage().showsFailure());
}

QUILLON_TEST(ProgressMonitorTest)
#include "tst_progress_monitor.moc"
