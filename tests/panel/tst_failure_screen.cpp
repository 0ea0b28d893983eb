// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/panel/ScreenParts.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QLabel>
#include <QMovie>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;
using ScreenParts::retryStyle;

namespace {

/// A run is on: the bar at 42 %, every flag as flashing leaves it.
struct Running : PanelStage {
    explicit Running(UpgradePlan plan = UpgradePlan::PcOnly)
    {
        panel->show();
        panel->pretendPlan(plan);
        panel->pretendUpgrading(true);
        panel->pretendWaitingForCable(false);
        panel->pretendLastPercent(42);
        panel->pretendLastPercentSince(QDateTime::currentDateTime());
        panel->bar()->setValue(42);
        panel->bar()->setClickable(false);
        panel->percentText()->setText(u"42%"_s);
        panel->movie()->start();
    }
};

} // namespace

class FailureScreenTest : public QObject {
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

void FailureScreenTest::armsTheRetry()
{
    const Running stage;
    const OpenPanel &panel = *stage.panel;
    stage.panel->fail();
    QVERIFY(panel.offersRetry());
    QVERIFY(panel.isRecovering());
    QVERIFY(!panel.isUpgrading());
    QCOMPARE(panel.lastPercent(), -1);
    QVERIFY(panel.lastPercentSince().isNull());
}

void FailureScreenTest::keepsOrNarrowsThePlan_data()
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

void FailureScreenTest::keepsOrNarrowsThePlan()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcDone);
    QFETCH(UpgradePlan, planAfter);
    const Running stage(plan);
    stage.panel->pretendPcDone(pcDone);
    stage.panel->fail();
    QCOMPARE(stage.panel->plan(), planAfter);
    QCOMPARE(stage.panel->isPcDone(), pcDone);
}

void FailureScreenTest::changesNoOtherState()
{
    const Running stage(UpgradePlan::Both);
    OpenPanel &panel = *stage.panel;
    panel.pretendPcDone(true);
    panel.pretendLastSeenId(Chip::Otg, 31);
    panel.pretendLastSeenId(Chip::Pc, 14);
    const QStringList before = panel.state();
    panel.fail();
    QCOMPARE(
        changedState(before, panel.state()),
        (QStringList{u"m_upgradePlan=2"_s, u"m_autoRecoverRunning=true"_s, u"m_inFailureRetry=true"_s,
                     u"m_isUpgrading=false"_s, u"m_lastProgressPercent=-1"_s, u"m_lastProgressTime="_s}));
}

void FailureScreenTest::changesInOrder()
{
    const Running stage;
    OpenPanel &panel = *stage.panel;
    Screen::showOnly(panel,
                     {u"m_progressBar"_s, u"tipMoiveLb"_s, u"m_detectingUsbLb"_s, u"m_connectHintLb"_s,
                      u"upgradeProgDisPlay"_s, u"m_rocketLb"_s, u"m_waitingIconLb"_s, u"m_upgradingLb"_s});
    const VisibilityRecorder recorder(panel);
    panel.fail();
    QCOMPARE(recorder.changes,
             (QStringList{u"-tipMoiveLb"_s, u"-m_detectingUsbLb"_s, u"-m_connectHintLb"_s, u"+verCompLb"_s,
                          u"+m_notesEdit"_s, u"+m_notesIconLb"_s, u"+m_notesTitleLb"_s, u"+m_notesLineLb"_s,
                          u"-upgradeProgDisPlay"_s, u"+m_failIconLb"_s, u"+m_failTextLb"_s, u"-m_rocketLb"_s,
                          u"-m_waitingIconLb"_s, u"-m_upgradingLb"_s, u"+m_upgradeTextLb"_s}));
}

void FailureScreenTest::stopsTheAnimation()
{
    const Running stage;
    QCOMPARE(stage.panel->movie()->state(), QMovie::Running);
    stage.panel->fail();
    QCOMPARE(stage.panel->movie()->state(), QMovie::NotRunning);
}

void FailureScreenTest::turnsTheBarIntoTheRetry()
{
    const Running stage;
    const ClickableProgressBar &bar = *stage.panel->bar();
    stage.panel->bar()->setProgressColor(QColor(1, 2, 3));
    stage.panel->fail();
    QCOMPARE(bar.value(), 0);
    QCOMPARE(stage.panel->percentText()->text(), u"0%"_s);
    QCOMPARE(stage.panel->barBackground(), QColor(35, 77, 75, 255));
    QCOMPARE(stage.panel->barBorder(), QColor(47, 212, 179, 255));
    QCOMPARE(stage.panel->barBorderWidth(), 2.0);
    QVERIFY(bar.isClickable());
    QCOMPARE(bar.progressColor(), QColor(1, 2, 3));
}

void FailureScreenTest::offersTheRetryIn_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("style");
    QTest::addColumn<QString>("failure");
    QTest::newRow("Chinese") << Language::Chinese << u"我已拔插设备，重新升级"_s << QRect(116, 13, 176, 21)
                             << retryStyle(u"Microsoft YaHei"_s) << u"升级失败！请拔插设备后重新开始升级"_s;
    QTest::newRow("English") << Language::English << u"I've replugged the device. Restart update."_s
                             << QRect(46, 13, 317, 21) << retryStyle(u"Segoe UI"_s)
                             << u"Update failed. Please replug the device and try again."_s;
}

void FailureScreenTest::offersTheRetryIn()
{
    QFETCH(Language, language);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    QFETCH(QString, style);
    QFETCH(QString, failure);
    const Running stage;
    QuillonFirmwareUpgrade::setLanguage(language);
    stage.panel->fail();
    QCOMPARE(stage.panel->upgradeText()->text(), text);
    QCOMPARE(stage.panel->upgradeText()->geometry(), place);
    QCOMPARE(stage.panel->upgradeText()->styleSheet(), style);
    QVERIFY(stage.panel->upgradeText()->isVisible());
    QCOMPARE(stage.panel->failureText()->text(), failure);
}

void FailureScreenTest::followsTheLanguage()
{
    const Running stage;
    const QLabel &retry = *stage.panel->upgradeText();
    stage.panel->fail();
    QuillonFirmwareUpgrade::setLanguage(Language::English);
    QCOMPARE(retry.text(), u"I've replugged the device. Restart update."_s);
    QCOMPARE(retry.geometry(), QRect(46, 13, 317, 21));
    QCOMPARE(retry.styleSheet(), retryStyle(u"Segoe UI"_s));
    QVERIFY(retry.isVisible());
    QuillonFirmwareUpgrade::setLanguage(Language::Chinese);
    QCOMPARE(retry.text(), u"我已拔插设备，重新升级"_s);
    QCOMPARE(retry.geometry(), QRect(116, 13, 176, 21));
    QCOMPARE(retry.styleSheet(), retryStyle(u"Microsoft YaHei"_s));
}

void FailureScreenTest::staysWhileTheVersionsAreRefreshed()
{
    const Running stage;
    OpenPanel &panel = *stage.panel;
    panel.fail();
    const QStringList before = Screen::everything(panel);
    panel.pretendDeviceVersion(Chip::Pc, u"1.2.0"_s);
    panel.pretendServerVersion(Chip::Pc, u"2.0.0"_s);
    for (const UpgradePlan plan : {UpgradePlan::None, UpgradePlan::Both}) {
        panel.pretendPlan(plan);
        panel.updateScreen();
        QCOMPARE(Screen::everything(panel), before);
    }
}

void FailureScreenTest::toleratesAMissingWidget_data()
{
    using Remove = std::function<void(OpenPanel &)>;
    QTest::addColumn<Remove>("remove");
    QTest::newRow("no movie") << Remove([](OpenPanel &panel) { panel.forget(Part::Movie); });
    QTest::newRow("no animation") << Remove([](OpenPanel &panel) { panel.forget(Part::Animation); });
    QTest::newRow("no detecting line") << Remove([](OpenPanel &panel) { panel.forget(Part::DetectingText); });
    QTest::newRow("no hint") << Remove([](OpenPanel &panel) { panel.forget(Part::CableHint); });
    QTest::newRow("no bar") << Remove([](OpenPanel &panel) { panel.forget(Part::Bar); });
}

void FailureScreenTest::toleratesAMissingWidget()
{
    QFETCH(std::function<void(OpenPanel &)>, remove);
    const Running stage;
    remove(*stage.panel);
    stage.panel->fail();
    QVERIFY(stage.panel->offersRetry());
    QVERIFY(stage.panel->failureText()->isVisible());
    QCOMPARE(stage.panel->upgradeText()->text(), u"我已拔插设备，重新升级"_s);
}

void FailureScreenTest::mayBeShownTwice()
{
    const Running stage(UpgradePlan::Both);
    stage.panel->fail();
    const QStringList screen = Screen::everything(*stage.panel);
    const QStringList state = stage.panel->state();
    stage.panel->fail();
    QCOMPARE(Screen::everything(*stage.panel), screen);
    QCOMPARE(stage.panel->state(), state);
}

void FailureScreenTest::laysOutTheWaitingLine_data()
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

void FailureScreenTest::laysOutTheWaitingLine()
{
    QFETCH(bool, waiting);
    QFETCH(Language, language);
    QFETCH(QString, text);
    QFETCH(QRect, icon);
    QFETCH(QRect, place);
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    for (QLabel *label : {panel.waitingIcon(), panel.waitingText()})
        label->setGeometry(0, 0, 7, 7);
    panel.waitingText()->clear();
    panel.pretendWaitingForCable(waiting);
    panel.layOutWaitingLine();
    QCOMPARE(panel.waitingText()->text(), text);
    QCOMPARE(panel.waitingText()->geometry(), place);
    QCOMPARE(panel.waitingIcon()->geometry(), icon);
}

void FailureScreenTest::waitingLineShowsNothingByItself()
{
    const PanelStage stage;
    stage.panel->layOutWaitingLine();
    QVERIFY(stage.panel->waitingText()->isHidden());
    QVERIFY(stage.panel->waitingIcon()->isHidden());
}

QUILLON_TEST(FailureScreenTest)
#include "tst_failure_screen.moc"
