// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// How a flashing run ends: failed or complete.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include "device/ControlMessages.h"

#include <QElapsedTimer>
#include <QMovie>
#include <QTest>

using namespace Qt::StringLiterals;

class ProgressVerdictsTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void aBadResultFails_data();
    void aBadResultFails();
    void theFailureOfTheOtgHalfLeavesTheOtgHalf();
    void aResultKillsTheToolLast_data();
    void aResultKillsTheToolLast();
    void successIsLogged_data();
    void successIsLogged();
    void completionForgetsTheVersions_data();
    void completionForgetsTheVersions();
    void completionIsShown();
    void completionNeedsNoBar();
    void completionReadsTheNewVersions();
    void completionOfADeletedPanelReadsNothing();
    void allWrittenAndEndedIsSuccess_data();
    void allWrittenAndEndedIsSuccess();
};

void ProgressVerdictsTest::aBadResultFails_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("status");
    QTest::newRow("no status") << "success"_ba << 0;
    QTest::newRow("status 0") << "success 0"_ba << 0;
    QTest::newRow("a word") << "success x"_ba << 0;
    QTest::newRow("status 2") << "99%\nsuccess 2\n"_ba << 2;
    QTest::newRow("a negative status") << "success -1\r\n"_ba << -1;
    QTest::newRow("a % at the end") << "success 1%"_ba << 0;
    QTest::newRow("a tabulator in place of the blank") << "success\t1"_ba << 0;
}

void ProgressVerdictsTest::aBadResultFails()
{
    QFETCH(QByteArray, content);
    QFETCH(int, status);
    QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    stage().log.clear();
    stage().poll(content);
    QCOMPARE(stage().log.lines().mid(0, 1),
             QStringList(u"[状态] 升级失败(status= %1 )，显示失败重试 UI"_s.arg(status)));
    QVERIFY(!stage().log.contains(u"Successfully upgrade !!!"_s));
    QVERIFY(stage().showsFailure());
    QVERIFY(!panel().isUpgrading());
    QVERIFY(!panel().pollTimer()->isActive());
    QVERIFY(!panel().watchdog()->isActive());
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    QVERIFY(panel().doneText()->isHidden());
}

void ProgressVerdictsTest::theFailureOfTheOtgHalfLeavesTheOtgHalf()
{
    stage().beginRun(UpgradePlan::Both, true);
    stage().poll("success 0");
    QVERIFY(stage().showsFailure());
    QCOMPARE(panel().plan(), UpgradePlan::OtgOnly);
}

void ProgressVerdictsTest::aResultKillsTheToolLast_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("lineBefore");
    QTest::newRow("failure") << "success 0"_ba << UpgradePlan::PcOnly
                             << u"[状态] 升级失败(status= 0 )，显示失败重试 UI"_s;
    QTest::newRow("complete") << "success 1"_ba << UpgradePlan::PcOnly
                              << u"[VersionRead] 清空版本号，准备重新读取"_s;
    QTest::newRow("PC half") << "success 1"_ba << UpgradePlan::Both
                             << u"OTG ready phase, but OTG device not found yet"_s;
}

void ProgressVerdictsTest::aResultKillsTheToolLast()
{
    QFETCH(QByteArray, content);
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, lineBefore);
    QVERIFY(stage().runSilentTool());
    QTRY_COMPARE(stage().tool.runs().size(), 1);
    stage().beginRun(plan);
    stage().log.clear();
    QElapsedTimer time;
    time.start();
    stage().poll(content);
    QVERIFY(time.elapsed() < 1500);
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    const QString end
        = stage().log.startingWith(u"OrvikFirmwareUpdata.exe process exit, exitCode="_s).value(0);
    QVERIFY(!end.isEmpty());
    QCOMPARE(missingInOrder(stage().log.lines(), {lineBefore, end}), QString());
}

void ProgressVerdictsTest::successIsLogged_data()
{
    QTest::addColumn<QStringList>("visible");
    QTest::addColumn<bool>("isRed");
    QTest::addColumn<bool>("isWaiting");
    QTest::addColumn<QString>("line");
    QTest::newRow("card and percentage")
        << QStringList{u"verCompLb"_s, u"upgradeProgDisPlay"_s} << false << false
        << u"[onReadFirmwareTxt] success! verCompLb visible= true  tipMoiveLb "
           "visible= false  progressColor=red? false  upgradeProgDisPlay visible= true  "
           "m_isWaitingForUSB= false"_s;
    QTest::newRow("the hint of the OTG half")
        << QStringList{u"tipMoiveLb"_s} << true << true
        << u"[onReadFirmwareTxt] success! verCompLb visible= false  tipMoiveLb "
           "visible= true  progressColor=red? true  upgradeProgDisPlay "
           "visible= false  m_isWaitingForUSB= true"_s;
}

void ProgressVerdictsTest::successIsLogged()
{
    QFETCH(QStringList, visible);
    QFETCH(bool, isRed);
    QFETCH(bool, isWaiting);
    QFETCH(QString, line);
    stage().beginRun(UpgradePlan::Both, true);
    panel().bar()->setProgressColor(isRed ? FlashingStage::kWaitingRed : FlashingStage::kNeutral);
    panel().pretendWaitingForCable(isWaiting);
    Screen::showOnly(panel(), visible + QStringList{u"m_progressBar"_s});
    stage().log.clear();
    stage().poll("success 1");
    QCOMPARE(stage().log.lines(),
             (QStringList{u"Successfully upgrade !!!"_s, line, u"[VersionRead] 清空版本号，准备重新读取"_s}));
}

void ProgressVerdictsTest::completionForgetsTheVersions_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcCompleted");
    QTest::newRow("PC only") << UpgradePlan::PcOnly << false;
    QTest::newRow("OTG only") << UpgradePlan::OtgOnly << false;
    QTest::newRow("the OTG half of both") << UpgradePlan::Both << true;
    QTest::newRow("no plan") << UpgradePlan::None << false;
}

void ProgressVerdictsTest::completionForgetsTheVersions()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcCompleted);
    stage().beginRun(plan, pcCompleted);
    panel().pretendRecovering(true);
    panel().pretendLastSeenId(Chip::Otg, 31);
    panel().pretendLastSeenId(Chip::Pc, 14);
    panel().pretendDeviceVersion(Chip::Pc, u"1.1.1"_s);
    panel().pretendDeviceVersion(Chip::Otg, u"1.1.2"_s);
    panel().pretendServerVersion(Chip::Pc, u"1.2.0"_s);
    panel().pretendServerVersion(Chip::Otg, u"1.2.1"_s);
    panel().pretendNotReadyReplies(3);
    const QStringList before = panel().state();
    stage().poll("success 1");
    QCOMPARE(changedState(before, panel().state()),
             (QStringList{u"m_devicePcVersion="_s, u"m_deviceOtgVersion="_s, u"m_autoRecoverRunning=false"_s,
                          u"m_isUpgrading=false"_s, u"lastDetectedOtgPid=0"_s, u"m_postUpgradeWaiting=true"_s,
                          u"m_zeroVersionCount=0"_s}));
    QVERIFY(!panel().pollTimer()->isActive());
    QVERIFY(!panel().watchdog()->isActive());
}

void ProgressVerdictsTest::completionIsShown()
{
    stage().beginRun(UpgradePlan::Both, true);
    panel().movie()->start();
    panel().bar()->setBackgroundColor(Qt::yellow);
    const ScreenChange screen(panel(), {u"m_doneIconLb"_s, u"m_doneLb"_s},
                              {u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s,
                               u"m_waitingIconLb"_s, u"m_upgradingLb"_s, u"upgradeProgDisPlay"_s});
    stage().poll("success 1");
    QCOMPARE(screen.actual(), screen.expected());
    QCOMPARE(stage().percentOnBar(), 100);
    QCOMPARE(stage().percentText(), u"100%"_s);
    QCOMPARE(panel().bar()->progressColor(), FlashingStage::kNeutral);
    QCOMPARE(panel().barBackground(), QColor(Qt::yellow));
    QCOMPARE(panel().movie()->state(), QMovie::NotRunning);
}

void ProgressVerdictsTest::completionNeedsNoBar()
{
    stage().beginRun(UpgradePlan::PcOnly);
    const Without withoutBar(panel(), Part::Bar);
    const QStringList screen = Screen::everything(panel());
    stage().poll("success 1");
    QVERIFY(!panel().isUpgrading());
    QVERIFY(panel().awaitsNewVersions());
    QCOMPARE(Screen::everything(panel()), screen);
}

void ProgressVerdictsTest::completionReadsTheNewVersions()
{
    panel().seeDevices({stage().bus().plug(0x000E)}, {0x000E});
    QTRY_COMPARE(stage().bus().written().size(), 1); // what a new panel asks
    stage().bus().clear();
    stage().beginRun(UpgradePlan::PcOnly);
    stage().poll("success 1");
    stage().log.clear();

    QElapsedTimer time;
    time.start();
    QTRY_COMPARE(stage().bus().written().size(), 1);
    const qint64 waited = time.elapsed();
    QVERIFY2(waited >= 2250 && waited < 3000, qPrintable(QString::number(waited)));
    QCOMPARE(stage().bus().written().first(), ControlMessages::getInstance()->randomRead(0x1008));
    QCOMPARE(stage().log.lines().mid(0, 2),
             (QStringList{u"[ConnectingR2] START - m_isUpgrading= false  m_autoRecoverRunning= false"_s,
                          u"[FirmwareUpgradeWidget定时器扫描] 发现  1  个设备"_s}));
    QCOMPARE(stage().log.startingWith(u"[ConnectingR2] START"_s).size(), 1);
}

void ProgressVerdictsTest::completionOfADeletedPanelReadsNothing()
{
    stage().beginRun(UpgradePlan::PcOnly);
    stage().poll("success 1");
    stage().panel.reset();
    stage().log.clear();
    QTest::qWait(2700);
    QCOMPARE(stage().log.startingWith(u"[ConnectingR2]"_s), QStringList());
}

void ProgressVerdictsTest::allWrittenAndEndedIsSuccess_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("isToolRunning");
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("PC only, ended") << "100%"_ba << UpgradePlan::PcOnly << false << true;
    QTest::newRow("CR LF, ended") << "99%\r\n100%\r\n"_ba << UpgradePlan::PcOnly << false << true;
    QTest::newRow("the PC half, ended") << "100%"_ba << UpgradePlan::Both << false << true;
    QTest::newRow("PC only, running") << "100%"_ba << UpgradePlan::PcOnly << true << false;
    QTest::newRow("99 %, ended") << "99%"_ba << UpgradePlan::PcOnly << false << false;
    QTest::newRow("another spelling, ended") << "0100%"_ba << UpgradePlan::PcOnly << false << false;
}

void ProgressVerdictsTest::allWrittenAndEndedIsSuccess()
{
    QFETCH(QByteArray, content);
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, isToolRunning);
    QFETCH(bool, succeeds);
    if (isToolRunning)
        QVERIFY(stage().runSilentTool());
    stage().beginRun(plan);
    stage().log.clear();
    stage().poll(content);
    QCOMPARE(stage().log.contains(u"[状态] 进度100%且进程已退出，视为升级成功"_s), succeeds);
    QCOMPARE(stage().log.contains(u"Successfully upgrade !!!"_s), succeeds);
    QCOMPARE(panel().pollTimer()->isActive(), !succeeds);
    QCOMPARE(panel().isPcDone(), succeeds && plan == UpgradePlan::Both);
    QCOMPARE(panel().awaitsNewVersions(), succeeds && plan != UpgradePlan::Both);
}

QUILLON_TEST(ProgressVerdictsTest)
#include "tst_progress_verdicts.moc"
