#include "tests/panel/PanelStage.h"
#include "tests/support/PanelState.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QLabel>
#include <QMovie>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

constexpr char kRetry[]
    = "QLabel{border:0px; color:rgba(47,212,179,1);font-family:\"%1\";font-size:16px; font-weight:700; "
      "letter-spacing:0px; text-align:center;}";

QString retryStyle(const char *family)
{
    return QString::fromLatin1(kRetry).arg(QLatin1String(family));
}

/// A run is on: the bar at 42 %, every flag as flashing leaves it.
struct Running : PanelStage {
    explicit Running(UpgradePlan plan = UpgradePlan::PcOnly)
    {
        panel->show();
        panel->m_upgradePlan = plan;
        panel->m_isUpgrading = true;
        panel->m_isWaitingForUSB = false;
        panel->m_lastProgressPercent = 42;
        panel->m_lastProgressTime = QDateTime::currentDateTime();
        panel->m_progressBar->setValue(42);
        panel->m_progressBar->setClickable(false);
        panel->upgradeProgDisPlay->setText(u"42%"_s);
        panel->m_tipMovie->start();
    }
};

} // namespace

class TestFailureScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void armsTheRetry();
    void keepsOrNarrowsThePlan_data();
    void keepsOrNarrowsThePlan();
    void changesNoOtherState();
    void changesInOrder();
    void stopsTheAnimation();
    void turnsTheBarIntoTheRetry();
    void offersTheRetryIn_data();
    void offersTheRetryIn();
    void followsTheLanguage();
    void staysWhileTheVersionsAreRefreshed();
    void toleratesAMissingWidget_data();
    void toleratesAMissingWidget();
    void mayBeShownTwice();
    void laysOutTheWaitingLine_data();
    void laysOutTheWaitingLine();
    void waitingLineShowsNothingByItself();
};

void TestFailureScreen::armsTheRetry()
{
    const Running stage;
    const FirmwareUpgradeWidget &panel = *stage.panel;
    stage.panel->showUpgradeFailureUI();
    QVERIFY(panel.m_inFailureRetry);
    QVERIFY(panel.m_autoRecoverRunning);
    QVERIFY(!panel.m_isUpgrading);
    QCOMPARE(panel.m_lastProgressPercent, -1);
    QVERIFY(panel.m_lastProgressTime.isNull());
}

void TestFailureScreen::keepsOrNarrowsThePlan_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcDone");
    QTest::addColumn<UpgradePlan>("planAfter");
    QTest::newRow("both, failed in the PC half") << UpgradePlan::Both << false << UpgradePlan::Both;
    QTest::newRow("both, failed in the OTG half") << UpgradePlan::Both << true << UpgradePlan::OtgOnly;
    QTest::newRow("PC only") << UpgradePlan::PcOnly << false << UpgradePlan::PcOnly;
    QTest::newRow("PC only, however far") << UpgradePlan::PcOnly << true << UpgradePlan::PcOnly;
    QTest::newRow("OTG only") << UpgradePlan::OtgOnly << false << UpgradePlan::OtgOnly;
    QTest::newRow("none") << UpgradePlan::None << true << UpgradePlan::None;
}

void TestFailureScreen::keepsOrNarrowsThePlan()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcDone);
    QFETCH(UpgradePlan, planAfter);
    const Running stage(plan);
    stage.panel->pcUpgradeCompleted = pcDone;
    stage.panel->showUpgradeFailureUI();
    QCOMPARE(stage.panel->m_upgradePlan, planAfter);
    QCOMPARE(stage.panel->pcUpgradeCompleted, pcDone);
}

void TestFailureScreen::changesNoOtherState()
{
    const Running stage(UpgradePlan::Both);
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.pcUpgradeCompleted = true;
    panel.lastDetectedOtgPid = 31;
    panel.lastDetectedPcPid = 14;
    const QStringList before = panelState(panel);
    panel.showUpgradeFailureUI();
    QCOMPARE(
        changedState(before, panelState(panel)),
        (QStringList{u"m_upgradePlan=2"_s, u"m_autoRecoverRunning=true"_s, u"m_inFailureRetry=true"_s,
                     u"m_isUpgrading=false"_s, u"m_lastProgressPercent=-1"_s, u"m_lastProgressTime="_s}));
}

void TestFailureScreen::changesInOrder()
{
    const Running stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    Screen::showOnly(panel,
                     {u"m_progressBar"_s, u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s,
                      u"upgradeProgDisPlay"_s, u"m_rocketLb"_s, u"m_waitingIconLb"_s, u"m_upgradingLb"_s});
    const VisibilityRecorder recorder(panel);
    panel.showUpgradeFailureUI();
    QCOMPARE(recorder.changes,
             (QStringList{u"-tipMoiveLb"_s, u"-m_detectingUsbLb"_s, u"-m_connectHintLb"_s, u"+verCompLb"_s,
                          u"+m_notesEdit"_s, u"+m_notesIconLb"_s, u"+m_notesTitleLb"_s, u"+m_notesLineLb"_s,
                          u"-upgradeProgDisPlay"_s, u"+m_failIconLb"_s, u"+m_failTextLb"_s, u"-m_rocketLb"_s,
                          u"-m_waitingIconLb"_s, u"-m_upgradingLb"_s, u"+m_upgradeTextLb"_s}));
}

void TestFailureScreen::stopsTheAnimation()
{
    const Running stage;
    QCOMPARE(stage.panel->m_tipMovie->state(), QMovie::Running);
    stage.panel->showUpgradeFailureUI();
    QCOMPARE(stage.panel->m_tipMovie->state(), QMovie::NotRunning);
}

void TestFailureScreen::turnsTheBarIntoTheRetry()
{
    const Running stage;
    const ClickableProgressBar &bar = *stage.panel->m_progressBar;
    stage.panel->m_progressBar->setProgressColor(QColor(1, 2, 3));
    stage.panel->showUpgradeFailureUI();
    QCOMPARE(bar.value(), 0);
    QCOMPARE(stage.panel->upgradeProgDisPlay->text(), u"0%"_s);
    QCOMPARE(bar.m_backgroundColor, QColor(35, 77, 75, 255));
    QCOMPARE(bar.m_borderColor, QColor(47, 212, 179, 255));
    QCOMPARE(bar.m_borderWidth, 2.0);
    QVERIFY(bar.isClickable());
    QCOMPARE(bar.m_progressColor, QColor(1, 2, 3));
}

void TestFailureScreen::offersTheRetryIn_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("failure");
    QTest::newRow("Chinese") << Language::Chinese << u"我已拔插设备，重新升级"_s << QRect(116, 13, 176, 21)
                             << retryStyle("Microsoft YaHei") << u"升级失败！请拔插设备后重新开始升级"_s;
    QTest::newRow("English") << Language::English << u"I've replugged the device. Restart update."_s
                             << QRect(46, 13, 317, 21) << retryStyle("Segoe UI")
                             << u"Update failed. Please replug the device and try again."_s;
}

void TestFailureScreen::offersTheRetryIn()
{
    QFETCH(Language, language);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    QFETCH(QString, style);
    QFETCH(QString, failure);
    const Running stage;
    QuillonFirmwareUpgrade::setLanguage(language);
    stage.panel->showUpgradeFailureUI();
    QCOMPARE(stage.panel->m_upgradeTextLb->text(), text);
    QCOMPARE(stage.panel->m_upgradeTextLb->geometry(), place);
    QCOMPARE(stage.panel->m_upgradeTextLb->styleSheet(), style);
    QVERIFY(stage.panel->m_upgradeTextLb->isVisible());
    QCOMPARE(stage.panel->m_failTextLb->text(), failure);
}

void TestFailureScreen::followsTheLanguage()
{
    const Running stage;
    const QLabel &retry = *stage.panel->m_upgradeTextLb;
    stage.panel->showUpgradeFailureUI();
    QuillonFirmwareUpgrade::setLanguage(Language::English);
    QCOMPARE(retry.text(), u"I've replugged the device. Restart update."_s);
    QCOMPARE(retry.geometry(), QRect(46, 13, 317, 21));
    QCOMPARE(retry.styleSheet(), retryStyle("Segoe UI"));
    QVERIFY(retry.isVisible());
    QuillonFirmwareUpgrade::setLanguage(Language::Chinese);
    QCOMPARE(retry.text(), u"我已拔插设备，重新升级"_s);
    QCOMPARE(retry.geometry(), QRect(116, 13, 176, 21));
    QCOMPARE(retry.styleSheet(), retryStyle("Microsoft YaHei"));
}

void TestFailureScreen::staysWhileTheVersionsAreRefreshed()
{
    const Running stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.showUpgradeFailureUI();
    const QStringList before = Screen::everything(panel);
    panel.m_devicePcVersion = u"1.2.0"_s;
    panel.m_remotePcVersion = u"2.0.0"_s;
    for (const UpgradePlan plan : {UpgradePlan::None, UpgradePlan::Both}) {
        panel.m_upgradePlan = plan;
        panel.updateUIByUpgradeState();
        QCOMPARE(Screen::everything(panel), before);
    }
}

void TestFailureScreen::toleratesAMissingWidget_data()
{
    using Remove = std::function<void(FirmwareUpgradeWidget &)>;
    QTest::addColumn<Remove>("remove");
    QTest::newRow("no movie") << Remove([](FirmwareUpgradeWidget &panel) { panel.m_tipMovie = nullptr; });
    QTest::newRow("no animation") << Remove([](FirmwareUpgradeWidget &panel) { panel.tipMoiveLb = nullptr; });
    QTest::newRow("no detecting line")
        << Remove([](FirmwareUpgradeWidget &panel) { panel.m_detectingUsbLb = nullptr; });
    QTest::newRow("no hint") << Remove([](FirmwareUpgradeWidget &panel) { panel.m_connectHintLb = nullptr; });
    QTest::newRow("no bar") << Remove([](FirmwareUpgradeWidget &panel) { panel.m_progressBar = nullptr; });
}

void TestFailureScreen::toleratesAMissingWidget()
{
    QFETCH(std::function<void(FirmwareUpgradeWidget &)>, remove);
    const Running stage;
    remove(*stage.panel);
    stage.panel->showUpgradeFailureUI();
    QVERIFY(stage.panel->m_inFailureRetry);
    QVERIFY(stage.panel->m_failTextLb->isVisible());
    QCOMPARE(stage.panel->m_upgradeTextLb->text(), u"我已拔插设备，重新升级"_s);
}

void TestFailureScreen::mayBeShownTwice()
{
    const Running stage(UpgradePlan::Both);
    stage.panel->showUpgradeFailureUI();
    const QStringList screen = Screen::everything(*stage.panel);
    const QStringList state = panelState(*stage.panel);
    stage.panel->showUpgradeFailureUI();
    QCOMPARE(Screen::everything(*stage.panel), screen);
    QCOMPARE(panelState(*stage.panel), state);
}

void TestFailureScreen::laysOutTheWaitingLine_data()
{
    QTest::addColumn<bool>("waiting");
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("icon");
    QTest::addColumn<QRect>("place");
    QTest::newRow("waiting for the cable, Chinese") << true << Language::Chinese << u"待USB线接入图示口..."_s
                                                    << QRect(108, 12, 24, 24) << QRect(140, 13, 159, 21);
    QTest::newRow("waiting for the cable, English")
        << true << Language::English << u"Connect to the indicated USB ports. "_s << QRect(51, 12, 24, 24)
        << QRect(83, 13, 290, 21);
    QTest::newRow("upgrading, Chinese") << false << Language::Chinese << u"升级中，请勿关闭设备..."_s
                                        << QRect(101, 12, 24, 24) << QRect(133, 13, 174, 21);
    QTest::newRow("upgrading, English")
        << false << Language::English << u"Updating... Do not turn off the device."_s << QRect(44, 12, 24, 24)
        << QRect(76, 13, 310, 21);
}

void TestFailureScreen::laysOutTheWaitingLine()
{
    QFETCH(bool, waiting);
    QFETCH(Language, language);
    QFETCH(QString, text);
    QFETCH(QRect, icon);
    QFETCH(QRect, place);
    const PanelStage stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    for (QLabel *label : {panel.m_waitingIconLb, panel.m_upgradingLb})
        label->setGeometry(0, 0, 7, 7);
    panel.m_upgradingLb->clear();
    panel.m_isWaitingForUSB = waiting;
    panel.updateWaitingLabelLayout();
    QCOMPARE(panel.m_upgradingLb->text(), text);
    QCOMPARE(panel.m_upgradingLb->geometry(), place);
    QCOMPARE(panel.m_waitingIconLb->geometry(), icon);
}

void TestFailureScreen::waitingLineShowsNothingByItself()
{
    const PanelStage stage;
    stage.panel->updateWaitingLabelLayout();
    QVERIFY(stage.panel->m_upgradingLb->isHidden());
    QVERIFY(stage.panel->m_waitingIconLb->isHidden());
}

QUILLON_TEST(TestFailureScreen)
#include "tst_failure_screen.moc"
