// What a new panel knows, and what it has created.
#include "tests/panel/OpenPanel.h"
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
    std::unique_ptr<OpenPanel> m_panel;
};

void InitialStateTest::initTestCase()
{
    ScriptedBus::install();
}

void InitialStateTest::init()
{
    m_sandbox = std::make_unique<Sandbox>();
    m_panel = std::make_unique<OpenPanel>();
}

void InitialStateTest::cleanup()
{
    m_panel.reset();
    m_sandbox.reset();
}

void InitialStateTest::stateIsFresh()
{
    QCOMPARE(m_panel->state(), kFreshState);
}

void InitialStateTest::everyPanelStartsFresh()
{
    m_panel->pretendDeviceVersion(Chip::Pc, u"1.2.3"_s);
    m_panel->pretendUpgrading(true);
    m_panel->pretendModel(DeviceModel::R1);

    const OpenPanel second;
    QCOMPARE(second.state(), kFreshState);
    m_panel->pretendUpgrading(false);
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
    QCOMPARE(m_panel->dragPosition(), QPoint(0, 0));
    QVERIFY(m_panel->lastPercentSince().isNull());
}

void InitialStateTest::linksAndWidgetsAreThere()
{
    QCOMPARE(m_panel->library(), HIDCommunicator::OrvikHIDManager::instance());
    QVERIFY(m_panel->bar());
    QVERIFY(m_panel->card());
    QVERIFY(m_panel->percentText());
    QVERIFY(m_panel->animation());
    QVERIFY(m_panel->movie());
    QCOMPARE(m_panel->animation()->movie(), m_panel->movie());
    QCOMPARE(m_panel->bar()->window(), m_panel.get());
}

void InitialStateTest::toolAndTimersAreChildrenInOrder()
{
    const QObjectList &children = m_panel->children();
    const auto process = children.indexOf(m_panel->tool());
    const auto watchdog = children.indexOf(m_panel->watchdog());
    const auto poll = children.indexOf(m_panel->pollTimer());

    QVERIFY(process > children.indexOf(m_panel->bar())); // after the widgets
    QVERIFY(watchdog > process);
    QVERIFY(poll > watchdog);
}

void InitialStateTest::toolAndTimersAreIdle()
{
    QCOMPARE(m_panel->tool()->state(), QProcess::NotRunning);
    QVERIFY(!m_panel->watchdog()->isActive());
    QVERIFY(!m_panel->pollTimer()->isActive());
}

void InitialStateTest::pollRepeatsAndWatchdogFiresOnce()
{
    QVERIFY(m_panel->watchdog()->isSingleShot());
    QVERIFY(!m_panel->pollTimer()->isSingleShot());
    QCOMPARE(m_panel->pollTimer()->interval(), 100);
}

QUILLON_TEST(InitialStateTest)
#include "tst_initial_state.moc"
