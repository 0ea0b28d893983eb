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
    QVERIFY(m->runSilentTool());
    m->beginRun(UpgradePlan::PcOnly);
    m->log.clear();
    m->poll(content);
    QCOMPARE(m->log.lines().mid(0, 1),
             QStringList(u"[状态] 升级失败(status=%1)，显示失败重试 UI"_s.arg(status)));
    QVERIFY(!m->log.contains(u"Successfully upgrade !!!"_s));
    QVERIFY(m->showsFailure());
    QVERIFY(!m->panel->isUpgrading());
    QVERIFY(!m->panel->pollTimer()->isActive());
    QVERIFY(!m->panel->watchdog()->isActive());
    QCOMPARE(m->panel->tool()->state(), QProcess::NotRunning);
    QVERIFY(m->panel->doneText()->isHidden());
}

void ProgressVerdictsTest::theFailureOfTheOtgHalfLeavesTheOtgHalf()
{
    m->beginRun(UpgradePlan::Both, true);
    m->poll("success 0");
    QVERIFY(m->showsFailure());
    QCOMPARE(m->panel->plan(), UpgradePlan::OtgOnly);
}

void ProgressVerdictsTest::aResultKillsTheToolLast_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("lineBefore");
    QTest::newRow("failure") << "success 0"_ba << UpgradePlan::PcOnly
                             << u"[状态] 升级失败(status=0)，显示失败重试 UI"_s;
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
    QVERIFY(m->runSilentTool());
    QTRY_COMPARE(m->tool.runs().size(), 1);
    m->beginRun(plan);
    m->log.clear();
    QElapsedTimer time;
    time.start();
    m->poll(content);
    QVERIFY(time.elapsed() < 1500);
    QCOMPARE(m->panel->tool()->state(), QProcess::NotRunning);
    const QString end = m->log.startingWith(u"OrvikFirmwareUpdata.exe process exit, exitCode="_s).value(0);
    QVERIFY(!end.isEmpty());
    QCOMPARE(missingInOrder(m->log.lines(), {lineBefore, end}), QString());
}

void ProgressVerdictsTest::successIsLogged_data()
{
    QTest::addColumn<QStringList>("visible");
    QTest::addColumn<bool>("isRed");
    QTest::addColumn<bool>("isWaiting");
    QTest::addColumn<QString>("line");
    QTest::newRow("card and percentage")
        << QStringList{u"verCompLb"_s, u"upgradeProgDisPlay"_s} << false << false
        << u"[onReadFirmwareTxt] success! verCompLb visible=true tipMoiveLb "
           "visible=false progressColor=red?false upgradeProgDisPlay visible=true "
           "m_isWaitingForUSB=false"_s;
    QTest::newRow("the hint of the OTG half")
        << QStringList{u"tipMoiveLb"_s} << true << true
        << u"[onReadFirmwareTxt] success! verCompLb visible=false tipMoiveLb "
           "visible=true progressColor=red?true upgradeProgDisPlay "
           "visible=false m_isWaitingForUSB=true"_s;
}

void ProgressVerdictsTest::successIsLogged()
{
    QFETCH(QStringList, visible);
    QFETCH(bool, isRed);
    QFETCH(bool, isWaiting);
    QFETCH(QString, line);
    m->beginRun(UpgradePlan::Both, true);
    m->panel->bar()->setProgressColor(isRed ? FlashingStage::kWaitingRed : FlashingStage::kNeutral);
    m->panel->pretendWaitingForCable(isWaiting);
    Screen::showOnly(*m->panel, visible + QStringList{u"m_progressBar"_s});
    m->log.clear();
    m->poll("success 1");
    QCOMPARE(m->log.lines(),
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
    OpenPanel &panel = *m->panel;
    m->beginRun(plan, pcCompleted);
    panel.pretendRecovering(true);
    panel.pretendLastSeenId(Chip::Otg, 31);
    panel.pretendLastSeenId(Chip::Pc, 14);
    panel.pretendDeviceVersion(Chip::Pc, u"1.1.1"_s);
    panel.pretendDeviceVersion(Chip::Otg, u"1.1.2"_s);
    panel.pretendServerVersion(Chip::Pc, u"1.2.0"_s);
    panel.pretendServerVersion(Chip::Otg, u"1.2.1"_s);
    panel.pretendNotReadyReplies(3);
    const QStringList before = panel.state();
    m->poll("success 1");
    QCOMPARE(changedState(before, panel.state()),
             (QStringList{u"m_devicePcVersion="_s, u"m_deviceOtgVersion="_s, u"m_autoRecoverRunning=false"_s,
                          u"m_isUpgrading=false"_s, u"lastDetectedOtgPid=0"_s, u"m_postUpgradeWaiting=true"_s,
                          u"m_zeroVersionCount=0"_s}));
    QVERIFY(!panel.pollTimer()->isActive());
    QVERIFY(!panel.watchdog()->isActive());
}

void ProgressVerdictsTest::completionIsShown()
{
    OpenPanel &panel = *m->panel;
    m->beginRun(UpgradePlan::Both, true);
    panel.movie()->start();
    panel.bar()->setBackgroundColor(Qt::yellow);
    const ScreenChange screen(panel, {u"m_doneIconLb"_s, u"m_doneLb"_s},
                              {u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s,
                               u"m_waitingIconLb"_s, u"m_upgradingLb"_s, u"upgradeProgDisPlay"_s});
    m->poll("success 1");
    QCOMPARE(screen.actual(), screen.expected());
    QCOMPARE(m->percentOnBar(), 100);
    QCOMPARE(m->percentText(), u"100%"_s);
    QCOMPARE(panel.bar()->progressColor(), FlashingStage::kNeutral);
    QCOMPARE(panel.barBackground(), QColor(Qt::yellow));
    QCOMPARE(panel.movie()->state(), QMovie::NotRunning);
}

void ProgressVerdictsTest::completionNeedsNoBar()
{
    m->beginRun(UpgradePlan::PcOnly);
    const Without withoutBar(*m->panel, Part::Bar);
    const QStringList screen = Screen::everything(*m->panel);
    m->poll("success 1");
    QVERIFY(!m->panel->isUpgrading());
    QVERIFY(m->panel->awaitsNewVersions());
    QCOMPARE(Screen::everything(*m->panel), screen);
}

void ProgressVerdictsTest::completionReadsTheNewVersions()
{
    m->panel->seeDevices({m->bus().plug(0x000E)}, {0x000E});
    QTRY_COMPARE(m->bus().written().size(), 1); // what a new panel asks
    m->bus().clear();
    m->beginRun(UpgradePlan::PcOnly);
    m->poll("success 1");
    m->log.clear();

    QElapsedTimer time;
    time.start();
    QTRY_COMPARE(m->bus().written().size(), 1);
    const qint64 waited = time.elapsed();
    QVERIFY2(waited >= 2250 && waited < 3000, qPrintable(QString::number(waited)));
    QCOMPARE(m->bus().written().first(), ControlMessages::getInstance()->randomRead(0x1008));
    QCOMPARE(m->log.lines().mid(0, 2),
             (QStringList{u"[ConnectingR2] START - m_isUpgrading=false m_autoRecoverRunning=false"_s,
                          u"[FirmwareUpgradeWidget定时器扫描] 发现 1 个设备"_s}));
    QCOMPARE(m->log.startingWith(u"[ConnectingR2] START"_s).size(), 1);
}

void ProgressVerdictsTest::completionOfADeletedPanelReadsNothing()
{
    m->beginRun(UpgradePlan::PcOnly);
    m->poll("success 1");
    m->panel.reset();
    m->log.clear();
    QTest::qWait(2700);
    QCOMPARE(m->log.startingWith(u"[ConnectingR2]"_s), QStringList());
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
        QVERIFY(m->runSilentTool());
    m->beginRun(plan);
    m->log.clear();
    m->poll(content);
    QCOMPARE(m->log.contains(u"[状态] 进度100%且进程已退出，视为升级成功"_s), succeeds);
    QCOMPARE(m->log.contains(u"Successfully upgrade !!!"_s), succeeds);
    QCOMPARE(m->panel->pollTimer()->isActive(), !succeeds);
    QCOMPARE(m->panel->isPcDone(), succeeds && plan == UpgradePlan::Both);
    QCOMPARE(m->panel->awaitsNewVersions(), succeeds && plan != UpgradePlan::Both);
}

QUILLON_TEST(ProgressVerdictsTest)
#include "tst_progress_verdicts.moc"
