// What a new panel knows, and what it has created.
#include "panel/FirmwareUpgradeWidget.h"
#include "tests/support/PanelState.h"
#include "tests/support/Sandbox.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QLabel>
#include <QMovie>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;

namespace {
/// Every line of panelState(); the members that belong to no line are tested by themselves.
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

class InitialStateTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void stateIsFresh();
    void everyPanelStartsFresh();
    void languageIsTheCurrentOne_data();
    void languageIsTheCurrentOne();
    void nothingIsDraggedOrTimed();
    void linksAndWidgetsAreThere();
    void toolAndTimersAreChildrenInOrder();
    void toolAndTimersAreIdle();
    void pollRepeatsAndWatchdogFiresOnce();

private:
    std::unique_ptr<Sandbox> m_sandbox;
    std::unique_ptr<FirmwareUpgradeWidget> m_panel;
};

void InitialStateTest::initTestCase()
{
    ScriptedBus::install();
}

void InitialStateTest::init()
{
    m_sandbox = std::make_unique<Sandbox>();
    m_panel = std::make_unique<FirmwareUpgradeWidget>();
}

void InitialStateTest::cleanup()
{
    m_panel.reset();
    m_sandbox.reset();
}

void InitialStateTest::stateIsFresh()
{
    QCOMPARE(panelState(*m_panel), kFreshState);
}

void InitialStateTest::everyPanelStartsFresh()
{
    m_panel->m_devicePcVersion = u"1.2.3"_s;
    m_panel->m_isUpgrading = true;
    m_panel->m_deviceModel = DeviceModel::R1;

    const FirmwareUpgradeWidget second;
    QCOMPARE(panelState(second), kFreshState);
    m_panel->m_isUpgrading = false;
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
    const FirmwareUpgradeWidget panel;

    QTEST(panel.isChinese, "isChinese");
}

void InitialStateTest::nothingIsDraggedOrTimed()
{
    QCOMPARE(m_panel->m_dragPosition, QPoint(0, 0));
    QVERIFY(m_panel->m_lastProgressTime.isNull());
}

void InitialStateTest::linksAndWidgetsAreThere()
{
    QCOMPARE(m_panel->m_hidManager, HIDCommunicator::OrvikHIDManager::instance());
    QVERIFY(m_panel->m_progressBar);
    QVERIFY(m_panel->verCompLb);
    QVERIFY(m_panel->upgradeProgDisPlay);
    QVERIFY(m_panel->tipMoiveLb);
    QVERIFY(m_panel->m_tipMovie);
    QCOMPARE(m_panel->tipMoiveLb->movie(), m_panel->m_tipMovie);
    QCOMPARE(m_panel->m_progressBar->window(), m_panel.get());
}

void InitialStateTest::toolAndTimersAreChildrenInOrder()
{
    const QObjectList &children = m_panel->children();
    const auto process = children.indexOf(m_panel->m_dfuProcess);
    const auto watchdog = children.indexOf(m_panel->m_dfuTimeoutTimer);
    const auto poll = children.indexOf(m_panel->m_progressTimer);

    QVERIFY(process > children.indexOf(m_panel->m_progressBar)); // after the widgets
    QVERIFY(watchdog > process);
    QVERIFY(poll > watchdog);
}

void InitialStateTest::toolAndTimersAreIdle()
{
    QCOMPARE(m_panel->m_dfuProcess->state(), QProcess::NotRunning);
    QVERIFY(!m_panel->m_dfuTimeoutTimer->isActive());
    QVERIFY(!m_panel->m_progressTimer->isActive());
}

void InitialStateTest::pollRepeatsAndWatchdogFiresOnce()
{
    QVERIFY(m_panel->m_dfuTimeoutTimer->isSingleShot());
    QVERIFY(!m_panel->m_progressTimer->isSingleShot());
    QCOMPARE(m_panel->m_progressTimer->interval(), 100);
}

QUILLON_TEST(InitialStateTest)
#include "tst_initial_state.moc"
