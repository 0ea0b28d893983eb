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
    OpenPanel &panel = *m->panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    panel.pretendModel(model);
    m->beginRun(UpgradePlan::Both);
    panel.pretendWaitingForCable(false);
    panel.layOutWaitingLine();
    m->poll("success 1");
    QTEST(panel.movie()->fileName(), "movie");
    QCOMPARE(panel.movie()->parent(), panel.animation());
    QCOMPARE(panel.animation()->movie(), panel.movie());
    QCOMPARE(panel.movie()->state(), QMovie::Running);
    QTEST(panel.detectingText()->text(), "detecting");
    QTEST(panel.cableHint()->text(), "hint");
    const bool isChinese = language == Language::Chinese;
    QCOMPARE(panel.waitingText()->text(),
             isChinese ? u"待USB线接入图示口..."_s : u"Connect to the indicated USB ports. "_s);
    QCOMPARE(panel.waitingText()->geometry(), isChinese ? QRect(140, 13, 159, 21) : QRect(83, 13, 290, 21));
    QCOMPARE(panel.waitingIcon()->geometry(), isChinese ? QRect(108, 12, 24, 24) : QRect(51, 12, 24, 24));
}

void ProgressOtgTest::handOverChangesTheScreen()
{
    OpenPanel &panel = *m->panel;
    m->beginRun(UpgradePlan::Both);
    panel.pretendWaitingForCable(false);
    panel.bar()->setBackgroundColor(Qt::yellow);
    const ScreenChange screen(panel,
                              {u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s,
                               u"m_waitingIconLb"_s, u"m_upgradingLb"_s},
                              {u"verCompLb"_s, u"m_notesEdit"_s, u"m_notesIconLb"_s, u"m_notesTitleLb"_s,
                               u"m_notesLineLb"_s, u"m_rocketLb"_s, u"m_upgradeTextLb"_s});
    const QStringList before = panel.state();
    m->poll("success 1");
    QCOMPARE(screen.actual(), screen.expected());
    QCOMPARE(m->percentOnBar(), 50);
    QCOMPARE(m->percentText(), u"50%"_s);
    QCOMPARE(panel.bar()->progressColor(), FlashingStage::kWaitingRed);
    QCOMPARE(panel.barBackground(), FlashingStage::kGrey);
    QCOMPARE(changedState(before, panel.state()),
             (QStringList{u"pcUpgradeCompleted=true"_s, u"m_isWaitingForUSB=true"_s}));
    QVERIFY(!panel.pollTimer()->isActive());
    QVERIFY(!panel.watchdog()->isActive());
}

void ProgressOtgTest::handOverLooksForTheChipAtOnce()
{
    m->bus().plug(0x001F);
    m->beginRun(UpgradePlan::Both);
    const QSignalSpy ready(m->panel.get(), &FirmwareUpgradeWidget::r2otgConnected);
    m->log.clear();
    m->poll("success 1");
    QCOMPARE(ready.size(), 1);
    QCOMPARE(
        missingInOrder(m->log.lines(),
                       {u"Successfully upgrade !!!"_s, u"PC upgrade completed, waiting for OTG device..."_s,
                        u"[ConnectingR2] START - m_isUpgrading=true m_autoRecoverRunning=false"_s,
                        u"OTG already present, trigger OTG upgrade directly"_s}),
        QString());
    QCOMPARE(m->panel->lastSeenId(Chip::Otg), 31);
}

void ProgressOtgTest::handOverDoesWithoutTheLibrary()
{
    const Without withoutLibrary(*m->panel, Part::Library);
    m->beginRun(UpgradePlan::Both);
    m->log.clear();
    m->poll("success 1");
    QVERIFY(m->panel->isPcDone());
    QCOMPARE(m->log.startingWith(u"[ConnectingR2]"_s), QStringList());
}

void ProgressOtgTest::handOverMayBeThePanelsEnd()
{
    QVERIFY(m->runSilentTool());
    const QPointer<QProcess> process = m->panel->tool();
    m->bus().plug(0x001F);
    m->beginRun(UpgradePlan::Both);
    connect(m->panel.get(), &FirmwareUpgradeWidget::r2otgConnected, this, [this] { m->panel.reset(); });
    m->sandbox.writeProgress("success 1");
    m->panel->pollProgress();
    QVERIFY(!m->panel);
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
    m->beginRun(plan, pcCompleted);
    m->panel->bar()->setProgressColor(progressColor);
    m->panel->pretendWaitingForCable(true);
    const QStringList visible = Screen::visibleWidgets(*m->panel);
    m->log.clear();
    m->poll(QByteArray::number(percent) + '%');
    const QStringList lines = m->log.startingWith(u"[onReadFirmwareTxt]"_s);
    QVERIFY(lines.value(0).contains(progressColor == FlashingStage::kWaitingRed
                                        ? u" progressColor=red?true "_s
                                        : u" progressColor=red?false "_s));
    QStringList expected{u"[onReadFirmwareTxt] 界面切换条件="_s + (switches ? u"true"_s : u"false"_s)};
    if (switches)
        expected.append(u"[onReadFirmwareTxt] 执行界面切换：隐藏动图，恢复版本号"_s);
    QCOMPARE(lines.mid(1), expected);
    QCOMPARE(m->panel->bar()->progressColor(), switches ? FlashingStage::kNeutral : progressColor);
    QCOMPARE(m->panel->isWaitingForCable(), !switches);
    if (!switches)
        QCOMPARE(Screen::visibleWidgets(*m->panel), visible);
}

void ProgressOtgTest::theSwitchShowsTheProgress()
{
    OpenPanel &panel = *m->panel;
    m->beginRun(UpgradePlan::Both, true);
    panel.pretendWaitingForCable(true);
    panel.movie()->start();
    const ScreenChange screen(panel,
                              {u"verCompLb"_s, u"m_notesEdit"_s, u"m_notesIconLb"_s, u"m_notesTitleLb"_s,
                               u"m_notesLineLb"_s, u"upgradeProgDisPlay"_s},
                              {u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s});
    m->poll("3%");
    QCOMPARE(screen.actual(), screen.expected());
    QCOMPARE(panel.movie()->state(), QMovie::NotRunning);
    QCOMPARE(panel.waitingText()->text(), u"升级中，请勿关闭设备..."_s);
    QCOMPARE(panel.waitingText()->geometry(), QRect(133, 13, 174, 21));
    QCOMPARE(m->percentText(), u"51%"_s);
    QCOMPARE(m->percentOnBar(), 51);
}

void ProgressOtgTest::theSwitchHappensOnce()
{
    m->beginRun(UpgradePlan::Both, true);
    m->poll("3%");
    m->panel->animation()->show();
    m->log.clear();
    m->poll("4%");
    QVERIFY(m->log.contains(u"[onReadFirmwareTxt] 界面切换条件=false"_s));
    QVERIFY(!m->panel->animation()->isHidden());
}

QUILLON_TEST(ProgressOtgTest)
#include "tst_progress_otg.moc"
