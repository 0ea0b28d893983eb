// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a new panel knows, and what it has created.
#include "tests/panel/PanelTest.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QLabel>
#include <QMovie>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;

namespace {
/// Every line of OpenPanel::state(); the members that belong to no line are tested by themselves.
const QStringList kFreshState{
    u"m_dragging=false"_s,
    u"m_remotePcVersion="_s,
    u"m_devicePcVersion="_s,
    u"m_remoteOtgVersion="_s,
    u"m_deviceOtgVersion="_s,
    u"m_pcFirmwarePath="_s,
    u"m_otgFirmwarePath="_s,
    u"m_pcDownloadUrl="_s,
    u"m_otgDownloadUrl="_s,
    u"m_upgradePlan=0"_s,
    u"m_autoRecoverRunning=false"_s,
    u"m_inFailureRetry=false"_s,
    u"m_isUpgrading=false"_s,
    u"m_pcFirmwareDownloaded=false"_s,
    u"m_otgFirmwareDownloaded=false"_s,
    u"pcUpgradeCompleted=false"_s,
    u"m_downloadRetryCount=0"_s,
    u"m_maxDownloadRetry=3"_s,
    u"isChinese=true"_s,
    u"m_isWaitingForUSB=true"_s,
    u"m_deviceModel=1"_s,
    u"lastDetectedOtgPid=0"_s,
    u"lastDetectedPcPid=0"_s,
    u"m_lastProgressPercent=-1"_s,
    u"m_lastProgressTime="_s,
    u"m_postUpgradeWaiting=false"_s,
    u"m_zeroVersionCount=0"_s,
};
} // namespace

class InitialStateTest : public PanelTest {
    Q_OBJECT

private slots:
    void stateIsFresh();
    void everyPanelStartsFresh();
    void languageIsTheCurrentOne_data();
    void languageIsTheCurrentOne();
    void nothingIsDraggedOrTimed();
    void linksAndWidgetsAreThere();
    void toolAndTimersAreChildrenInOrder();
    void toolAndTimersAreIdle();
    void pollRepeatsAndWatchdogFiresOnce();
};

void InitialStateTest::stateIsFresh()
{
    QCOMPARE(panel().state(), kFreshState);
}

void InitialStateTest::everyPanelStartsFresh()
{
    panel().pretendDeviceVersion(Chip::Pc, u"1.2.3"_s);
    panel().pretendUpgrading(true);
    panel().pretendModel(DeviceModel::R1);

    const OpenPanel second;
    QCOMPARE(second.state(), kFreshState);
    panel().pretendUpgrading(false);
}

void InitialStateTest::languageIsTheCurrentOne_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<bool>("isChinese");
    QTest::newRow("Chinese") << Language::Chinese << true;
    QTest::newRow("English") << Language::English << false;
}

void InitialStateTest::languageIsTheCurrentOne()
{
    QFETCH(Language, language);
    setLanguage(language);
    const auto backToChinese = qScopeGuard([] { setLanguage(Language::Chinese); });
    const OpenPanel panel;

    QTEST(panel.isChinese(), "isChinese");
}

void InitialStateTest::nothingIsDraggedOrTimed()
{
    QCOMPARE(panel().dragPosition(), QPoint(0, 0));
    QVERIFY(panel().lastPercentSince().isNull());
}

void InitialStateTest::linksAndWidgetsAreThere()
{
    QCOMPARE(panel().library(), HIDCommunicator::OrvikHIDManager::instance());
    QVERIFY(panel().bar());
    QVERIFY(panel().card());
    QVERIFY(panel().percentText());
    QVERIFY(panel().animation());
    QVERIFY(panel().movie());
    QCOMPARE(panel().animation()->movie(), panel().movie());
    QCOMPARE(panel().bar()->window(), &panel());
}

void InitialStateTest::toolAndTimersAreChildrenInOrder()
{
    const QObjectList &children = panel().children();
    const auto process = children.indexOf(panel().tool());
    const auto watchdog = children.indexOf(panel().watchdog());
    const auto poll = children.indexOf(panel().pollTimer());

    QVERIFY(process > children.indexOf(panel().bar())); // after the widgets
    QVERIFY(watchdog > process);
    QVERIFY(poll > watchdog);
}

void InitialStateTest::toolAndTimersAreIdle()
{
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    QVERIFY(!panel().watchdog()->isActive());
    QVERIFY(!panel().pollTimer()->isActive());
}

void InitialStateTest::pollRepeatsAndWatchdogFiresOnce()
{
    QVERIFY(panel().watchdog()->isSingleShot());
    QVERIFY(!panel().pollTimer()->isSingleShot());
    QCOMPARE(panel().pollTimer()->interval(), 100);
}

QUILLON_TEST(InitialStateTest)
#include "tst_initial_state.moc"
