// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// From the end of the PC half to the first percents of the OTG half.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QMovie>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class ProgressOtgTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void handOverAsksForTheOtgCable_data();
    void handOverAsksForTheOtgCable();
    void handOverChangesTheScreen();
    void handOverLooksForTheChipAtOnce();
    void handOverDoesWithoutTheLibrary();
    void handOverMayBeThePanelsEnd();
    void theOtgHalfSwitchesAtThreePercent_data();
    void theOtgHalfSwitchesAtThreePercent();
    void theSwitchShowsTheProgress();
    void theSwitchHappensOnce();
};

void ProgressOtgTest::handOverAsksForTheOtgCable_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("movie");
    QTest::addColumn<QString>("detecting");
    QTest::addColumn<QString>("hint");
    const QString r1Movie = u":/new/prefix1/image/pc_otg.gif"_s;
    const QString r2Movie = u":/new/prefix1/image/dc5v_otg.gif"_s;
    QTest::newRow("R1, Chinese") << DeviceModel::R1 << Language::Chinese << r1Movie << u"正在检测OTG接入..."_s
                                 << u"请使用配件附带的USB线，接入并保持USB-C和OTG口\n与电脑的连接。"_s;
    QTest::newRow("R2, Chinese") << DeviceModel::R2 << Language::Chinese << r2Movie << u"正在检测OTG接入..."_s
                                 << u"请使用配件附带USB线接入图示DC-5V和OTG口,\n继续完成升级。"_s;
    QTest::newRow("R1, English")
        << DeviceModel::R1 << Language::English << r1Movie << u"Detecting OTG connection..."_s
        << u"Please use the USB cable provided with the \naccessory to connect and maintain "
           "the connection\n between the USB-C and OTG port to the computer."_s;
    QTest::newRow("R2, English")
        << DeviceModel::R2 << Language::English << r2Movie << u"Detecting OTG connection..."_s
        << u"To continue and complete the update, use the provided\nUSB cables to connect "
           "the DC-5V and OTG ports as\nshown."_s;
}

void ProgressOtgTest::handOverAsksForTheOtgCable()
{
    QFETCH(DeviceModel, model);
    QFETCH(Language, language);
    QuillonFirmwareUpgrade::setLanguage(language);
    panel().pretendModel(model);
    stage().beginRun(UpgradePlan::Both);
    panel().pretendWaitingForCable(false);
    panel().layOutWaitingLine();
    stage().poll("success 1");
    QTEST(panel().movie()->fileName(), "movie");
    QCOMPARE(panel().movie()->parent(), panel().animation());
    QCOMPARE(panel().animation()->movie(), panel().movie());
    QCOMPARE(panel().movie()->state(), QMovie::Running);
    QTEST(panel().detectingText()->text(), "detecting");
    QTEST(panel().cableHint()->text(), "hint");
    const bool isChinese = language == Language::Chinese;
    QCOMPARE(panel().waitingText()->text(),
             isChinese ? u"待USB线接入图示口..."_s : u"Connect to the indicated USB ports. "_s);
    QCOMPARE(panel().waitingText()->geometry(), isChinese ? QRect(140, 13, 159, 21) : QRect(83, 13, 290, 21));
    QCOMPARE(panel().waitingIcon()->geometry(), isChinese ? QRect(108, 12, 24, 24) : QRect(51, 12, 24, 24));
}

void ProgressOtgTest::handOverChangesTheScreen()
{
    stage().beginRun(UpgradePlan::Both);
    panel().pretendWaitingForCable(false);
    panel().bar()->setBackgroundColor(Qt::yellow);
    const ScreenChange screen(panel(),
                              {u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s,
                               u"m_waitingIconLb"_s, u"m_upgradingLb"_s},
                              {u"verCompLb"_s, u"m_notesEdit"_s, u"m_notesIconLb"_s, u"m_notesTitleLb"_s,
                               u"m_notesLineLb"_s, u"m_rocketLb"_s, u"m_upgradeTextLb"_s});
    const QStringList before = panel().state();
    stage().poll("success 1");
    QCOMPARE(screen.actual(), screen.expected());
    QCOMPARE(stage().percentOnBar(), 50);
    QCOMPARE(stage().percentText(), u"50%"_s);
    QCOMPARE(panel().bar()->progressColor(), FlashingStage::kWaitingRed);
    QCOMPARE(panel().barBackground(), FlashingStage::kGrey);
    QCOMPARE(changedState(before, panel().state()),
             (QStringList{u"pcUpgradeCompleted=true"_s, u"m_isWaitingForUSB=true"_s}));
    QVERIFY(!panel().pollTimer()->isActive());
    QVERIFY(!panel().watchdog()->isActive());
}

void ProgressOtgTest::handOverLooksForTheChipAtOnce()
{
    stage().bus().plug(0x001F);
    stage().beginRun(UpgradePlan::Both);
    const QSignalSpy ready(&panel(), &FirmwareUpgradeWidget::r2otgConnected);
    stage().log.clear();
    stage().poll("success 1");
    QCOMPARE(ready.size(), 1);
    QCOMPARE(
        missingInOrder(stage().log.lines(),
                       {u"Successfully upgrade !!!"_s, u"PC upgrade completed, waiting for OTG device..."_s,
                        u"[ConnectingR2] START - m_isUpgrading= true  m_autoRecoverRunning= false"_s,
                        u"OTG already present, trigger OTG upgrade directly"_s}),
        QString());
    QCOMPARE(panel().lastSeenId(Chip::Otg), 31);
}

void ProgressOtgTest::handOverDoesWithoutTheLibrary()
{
    const Without withoutLibrary(panel(), Part::Library);
    stage().beginRun(UpgradePlan::Both);
    stage().log.clear();
    stage().poll("success 1");
    QVERIFY(panel().isPcDone());
    QCOMPARE(stage().log.startingWith(u"[ConnectingR2]"_s), QStringList());
}

void ProgressOtgTest::handOverMayBeThePanelsEnd()
{
    QVERIFY(stage().runSilentTool());
    const QPointer<QProcess> process = panel().tool();
    stage().bus().plug(0x001F);
    stage().beginRun(UpgradePlan::Both);
    connect(&panel(), &FirmwareUpgradeWidget::r2otgConnected, this, [this] { stage().panel.reset(); });
    stage().sandbox.writeProgress("success 1");
    panel().pollProgress();
    QVERIFY(!stage().panel);
    QVERIFY(!process);
}

void ProgressOtgTest::theOtgHalfSwitchesAtThreePercent_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcCompleted");
    QTest::addColumn<QColor>("progressColor");
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("switches");
    const QColor red = FlashingStage::kWaitingRed;
    QTest::newRow("0 %") << UpgradePlan::Both << true << red << 0 << false;
    QTest::newRow("1 %") << UpgradePlan::Both << true << red << 1 << false;
    QTest::newRow("2 %") << UpgradePlan::Both << true << red << 2 << false;
    QTest::newRow("3 %") << UpgradePlan::Both << true << red << 3 << true;
    QTest::newRow("90 %") << UpgradePlan::Both << true << red << 90 << true;
    QTest::newRow("the PC half") << UpgradePlan::Both << false << red << 3 << false;
    QTest::newRow("OTG only") << UpgradePlan::OtgOnly << true << red << 3 << false;
    QTest::newRow("no longer red") << UpgradePlan::Both << true << FlashingStage::kNeutral << 3 << false;
}

void ProgressOtgTest::theOtgHalfSwitchesAtThreePercent()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcCompleted);
    QFETCH(QColor, progressColor);
    QFETCH(int, percent);
    QFETCH(bool, switches);
    stage().beginRun(plan, pcCompleted);
    panel().bar()->setProgressColor(progressColor);
    panel().pretendWaitingForCable(true);
    const QStringList visible = Screen::visibleWidgets(panel());
    stage().log.clear();
    stage().poll(QByteArray::number(percent) + '%');
    const QStringList lines = stage().log.startingWith(u"[onReadFirmwareTxt]"_s);
    QVERIFY(lines.value(0).contains(progressColor == FlashingStage::kWaitingRed
                                        ? u" progressColor=red? true "_s
                                        : u" progressColor=red? false "_s));
    QStringList expected{u"[onReadFirmwareTxt] 界面切换条件= "_s + (switches ? u"true"_s : u"false"_s)};
    if (switches)
        expected.append(u"[onReadFirmwareTxt] 执行界面切换：隐藏动图，恢复版本号"_s);
    QCOMPARE(lines.mid(1), expected);
    QCOMPARE(panel().bar()->progressColor(), switches ? FlashingStage::kNeutral : progressColor);
    QCOMPARE(panel().isWaitingForCable(), !switches);
    if (!switches)
        QCOMPARE(Screen::visibleWidgets(panel()), visible);
}

void ProgressOtgTest::theSwitchShowsTheProgress()
{
    stage().beginRun(UpgradePlan::Both, true);
    panel().pretendWaitingForCable(true);
    panel().movie()->start();
    const ScreenChange screen(panel(),
                              {u"verCompLb"_s, u"m_notesEdit"_s, u"m_notesIconLb"_s, u"m_notesTitleLb"_s,
                               u"m_notesLineLb"_s, u"upgradeProgDisPlay"_s},
                              {u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s});
    stage().poll("3%");
    QCOMPARE(screen.actual(), screen.expected());
    QCOMPARE(panel().movie()->state(), QMovie::NotRunning);
    QCOMPARE(panel().waitingText()->text(), u"升级中，请勿关闭设备..."_s);
    QCOMPARE(panel().waitingText()->geometry(), QRect(133, 13, 174, 21));
    QCOMPARE(stage().percentText(), u"51%"_s);
    QCOMPARE(stage().percentOnBar(), 51);
}

void ProgressOtgTest::theSwitchHappensOnce()
{
    stage().beginRun(UpgradePlan::Both, true);
    stage().poll("3%");
    panel().animation()->show();
    stage().log.clear();
    stage().poll("4%");
    QVERIFY(stage().log.contains(u"[onReadFirmwareTxt] 界面切换条件= false"_s));
    QVERIFY(!panel().animation()->isHidden());
}

QUILLON_TEST(ProgressOtgTest)
#include "tst_progress_otg.moc"
