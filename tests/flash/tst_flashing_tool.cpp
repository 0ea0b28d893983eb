// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// How the flashing tool is started, and what its start shows.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class FlashingToolTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void argumentsNameImageAndChip_data();
    void argumentsNameImageAndChip();
    void theToolIsStartedAsItIs();
    void theStartIsLogged_data();
    void theStartIsLogged();
    void formerResultsAreForgotten();
    void theClocksRunAfterTheStart();
    void theStartShows_data();
    void theStartShows();
    void theWaitingScreenStays();
    void startsWithoutABar();

private:
    void start(int pid = 14) { panel().flash(stage().image, pid); }
};

void FlashingToolTest::argumentsNameImageAndChip_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("pid");
    QTest::addColumn<QString>("digits");
    QTest::addColumn<bool>("isInBootLoader");
    QTest::newRow("R1, PC chip") << DeviceModel::R1 << 1 << u"0001"_s << false;
    QTest::newRow("R1, PC chip in its boot loader") << DeviceModel::R1 << 16 << u"0010"_s << true;
    QTest::newRow("R1, OTG chip, whose product ID is also its boot loader's")
        << DeviceModel::R1 << 18 << u"0012"_s << true;
    QTest::newRow("R1, R2's boot loader of the PC chip") << DeviceModel::R1 << 255 << u"00ff"_s << false;
    QTest::newRow("R1, R2's boot loader of the OTG chip") << DeviceModel::R1 << 101 << u"0065"_s << false;
    QTest::newRow("R2, PC chip") << DeviceModel::R2 << 14 << u"000e"_s << false;
    QTest::newRow("R2, PC chip in its boot loader") << DeviceModel::R2 << 255 << u"00ff"_s << true;
    QTest::newRow("R2, OTG chip") << DeviceModel::R2 << 31 << u"001f"_s << false;
    QTest::newRow("R2, OTG chip in its boot loader") << DeviceModel::R2 << 101 << u"0065"_s << true;
    QTest::newRow("R2, R1's boot loader") << DeviceModel::R2 << 16 << u"0010"_s << false;
    QTest::newRow("R2, R1's OTG chip") << DeviceModel::R2 << 18 << u"0012"_s << false;
    QTest::newRow("any other model is R2") << DeviceModel(7) << 255 << u"00ff"_s << true;
    QTest::newRow("no chip") << DeviceModel::R2 << 0 << u"0000"_s << false;
    QTest::newRow("the largest product ID") << DeviceModel::R2 << 0xFFFF << u"ffff"_s << false;
    QTest::newRow("digits are lower case") << DeviceModel::R2 << 0xABCD << u"abcd"_s << false;
    QTest::newRow("a number that is no product ID") << DeviceModel::R2 << 0x12345 << u"12345"_s << false;
}

void FlashingToolTest::argumentsNameImageAndChip()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, pid);
    QFETCH(QString, digits);
    QFETCH(bool, isInBootLoader);
    panel().pretendModel(model);
    QStringList expected{u"C:/a b/R2_PC1.2.3.bin"_s, u"--pid"_s, digits};
    if (isInBootLoader)
        expected.append(u"--already-in-dfu"_s);
    QCOMPARE(panel().toolArguments(u"C:/a b/R2_PC1.2.3.bin"_s, pid), expected);
}

void FlashingToolTest::theToolIsStartedAsItIs()
{
    panel().flash(stage().image, 255);
    QTRY_COMPARE(stage().tool.runs().size(), 1);
    QCOMPARE(stage().tool.runs().first().arguments,
             (QStringList{stage().image, u"--pid"_s, u"00ff"_s, u"--already-in-dfu"_s}));
    QCOMPARE(stage().tool.runs().first().workingDirectory, QDir::currentPath());
    QCOMPARE(panel().tool()->program(), FakeFlashingTool::path());
    QCOMPARE(panel().tool()->openMode(), QIODevice::ReadWrite);
    QVERIFY(panel().tool()->workingDirectory().isEmpty());
    QVERIFY(panel().tool()->environment().isEmpty());
}

void FlashingToolTest::theStartIsLogged_data()
{
    QTest::addColumn<int>("pid");
    QTest::addColumn<int>("lastPcPid");
    QTest::addColumn<int>("lastOtgPid");
    QTest::addColumn<bool>("recovers");
    QTest::addColumn<QString>("line");
    QTest::newRow("an upgrade")
        << 14 << 14 << 0 << false
        << u"startUpgradeWithExternalTool pid= e  lastDetectedPcPid= e  lastDetectedOtgPid= 0 "
           " autoRecover= false"_s;
    QTest::newRow("a recovery")
        << 255 << 255 << 31 << true
        << u"startUpgradeWithExternalTool pid= ff  lastDetectedPcPid= ff  lastDetectedOtgPid= 1f "
           " autoRecover= true"_s;
    QTest::newRow("the OTG half")
        << 101 << 14 << 101 << false
        << u"startUpgradeWithExternalTool pid= 65  lastDetectedPcPid= e  lastDetectedOtgPid= 65 "
           " autoRecover= false"_s;
}

void FlashingToolTest::theStartIsLogged()
{
    QFETCH(int, pid);
    QFETCH(QString, line);
    QFETCH(int, lastPcPid);
    QFETCH(int, lastOtgPid);
    QFETCH(bool, recovers);
    panel().pretendLastSeenId(Chip::Pc, lastPcPid);
    panel().pretendLastSeenId(Chip::Otg, lastOtgPid);
    panel().pretendRecovering(recovers);
    stage().log.clear();
    start(pid);
    QCOMPARE(
        stage().log.lines(),
        (QStringList{
            line, u"##222 exePath is:  "_s + FakeFlashingTool::path(),
            u"[startUpgrade] keepWaitingUI= false  progressColor=red? false  pcUpgradeCompleted= false"_s}));
}

void FlashingToolTest::formerResultsAreForgotten()
{
    stage().sandbox.writeProgress("success 1");
    panel().pretendLastPercent(42);
    panel().pretendLastPercentSince(QDateTime::currentDateTime());
    stage().tool.obeys("hang");
    start();
    QVERIFY(!QFile::exists(stage().sandbox.progressFile()));
    QVERIFY(QFileInfo(QFileInfo(stage().sandbox.progressFile()).path()).isDir());
    QCOMPARE(panel().lastPercent(), -1);
    QVERIFY(panel().lastPercentSince().isNull());
}

void FlashingToolTest::theClocksRunAfterTheStart()
{
    stage().tool.obeys("hang");
    QVERIFY(!panel().watchdog()->isActive());
    QVERIFY(!panel().pollTimer()->isActive());
    start();
    QVERIFY(panel().watchdog()->isActive());
    QVERIFY(panel().watchdog()->isSingleShot());
    QCOMPARE(panel().watchdog()->interval(), 60'000);
    QVERIFY(panel().pollTimer()->isActive());
    QVERIFY(!panel().pollTimer()->isSingleShot());
    QCOMPARE(panel().pollTimer()->interval(), 100);
}

void FlashingToolTest::theStartShows_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcCompleted");
    QTest::addColumn<QColor>("progressColor");
    QTest::addColumn<int>("percent");
    const QColor red = FlashingStage::kWaitingRed;
    const QColor neutral = FlashingStage::kNeutral;
    QTest::newRow("PC only") << UpgradePlan::PcOnly << false << neutral << 0;
    QTest::newRow("OTG only") << UpgradePlan::OtgOnly << false << neutral << 0;
    QTest::newRow("the PC half of both") << UpgradePlan::Both << false << neutral << 0;
    QTest::newRow("the PC half of both in red") << UpgradePlan::Both << false << red << 0;
    QTest::newRow("the OTG half of both, no longer waiting") << UpgradePlan::Both << true << neutral << 50;
    QTest::newRow("the OTG half of both, almost in red")
        << UpgradePlan::Both << true << QColor(248, 74, 75, 254) << 50;
    QTest::newRow("OTG only in red") << UpgradePlan::OtgOnly << true << red << 0;
    QTest::newRow("PC only in red") << UpgradePlan::PcOnly << true << red << 0;
    QTest::newRow("no plan") << UpgradePlan::None << false << neutral << 0;
}

void FlashingToolTest::theStartShows()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcCompleted);
    QFETCH(QColor, progressColor);
    QFETCH(int, percent);
    panel().pretendPlan(plan);
    panel().pretendPcDone(pcCompleted);
    panel().pretendWaitingForCable(true);
    panel().bar()->setProgressColor(progressColor);
    panel().bar()->setBackgroundColor(Qt::red);
    panel().bar()->setValue(77);
    const ScreenChange screen(panel(), {u"m_waitingIconLb"_s, u"m_upgradingLb"_s, u"upgradeProgDisPlay"_s},
                              {u"m_rocketLb"_s, u"m_upgradeTextLb"_s});
    stage().tool.obeys("hang");
    start();
    QCOMPARE(stage().percentOnBar(), percent);
    QCOMPARE(stage().percentText(), QString::number(percent) + u'%');
    QCOMPARE(panel().barBackground(), FlashingStage::kGrey);
    QCOMPARE(panel().bar()->progressColor(), progressColor);
    QCOMPARE(screen.actual(), screen.expected());
    QVERIFY(!panel().isWaitingForCable());
    QCOMPARE(panel().waitingText()->text(), u"升级中，请勿关闭设备..."_s);
    QCOMPARE(panel().waitingText()->geometry(), QRect(133, 13, 174, 21));
    QCOMPARE(panel().waitingIcon()->geometry(), QRect(101, 12, 24, 24));
}

void FlashingToolTest::theWaitingScreenStays()
{
    stage().beginRun(UpgradePlan::Both, true);
    panel().pretendWaitingForCable(true);
    panel().bar()->setBackgroundColor(Qt::red);
    const ScreenChange screen(panel(), {}, {});
    const QString bar = panel().waitingText()->text();
    stage().tool.obeys("hang");
    start(31);
    QCOMPARE(stage().percentOnBar(), 50);
    QCOMPARE(stage().percentText(), u"50%"_s);
    QCOMPARE(panel().barBackground(), FlashingStage::kGrey);
    QCOMPARE(panel().bar()->progressColor(), FlashingStage::kWaitingRed);
    QCOMPARE(screen.actual(), screen.expected());
    QVERIFY(panel().isWaitingForCable());
    QCOMPARE(panel().waitingText()->text(), bar);
    QVERIFY(stage().log.contains(
        u"[startUpgrade] keepWaitingUI= true  progressColor=red? true  pcUpgradeCompleted= true"_s));
}

void FlashingToolTest::startsWithoutABar()
{
    const Without withoutBar(panel(), Part::Bar);
    panel().percentText()->setText(u"12%"_s);
    stage().tool.obeys("hang");
    start();
    QVERIFY(panel().watchdog()->isActive());
    QVERIFY(panel().pollTimer()->isActive());
    QCOMPARE(stage().percentText(), u"12%"_s);
    QCOMPARE(stage().log.startingWith(u"[startUpgrade]"_s), QStringList());
}

QUILLON_TEST(FlashingToolTest)
#include "tst_flashing_tool.moc"
