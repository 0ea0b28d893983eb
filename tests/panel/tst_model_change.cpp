// Choosing the model: what is forgotten, what is shown, and how the panel gets to the device of the new
// model.
#include "tests/panel/PanelStage.h"
#include "tests/support/HidCalls.h"
#include "tests/support/LogOrder.h"
#include "tests/support/PanelState.h"
#include "tests/support/TestProgram.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QLabel>
#include <QMovie>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
const QString kModeQuery = u"hid: DC_AddSendData(65: 51 c4 09 00 00 04 08 10 17 ff)"_s;
const QString kSkipLine = u"[setDeviceModel] target device already connected, skip disconnect/reconnect"_s;
const QString kLateQueryLine = u"2000 singleShot"_s;
const QStringList kReconnect{u"hid: closeOrvikSendDataThread()"_s, u"hid: closeOrvikReceiveDataThread()"_s,
                             u"hid: disconnectDevice(0)"_s};

/// Milliseconds of a clock that runs ahead.
constexpr int kPatience = 60'000;

constexpr int kR1Pc = 0x0001;
constexpr int kR1PcDfu = 0x0010;
constexpr int kR1Otg = 0x0012;
constexpr int kR2Pc = 0x000E;
constexpr int kR2PcDfu = 0x00FF;
constexpr int kR2Otg = 0x001F;

/// A panel in the middle of everything: each member that a model change resets has a value of its own.
void fillRunState(FirmwareUpgradeWidget &panel)
{
    panel.m_devicePcVersion = u"1.2.3"_s;
    panel.m_deviceOtgVersion = u"1.2.4"_s;
    panel.m_remotePcVersion = u"1.3.3"_s;
    panel.m_remoteOtgVersion = u"1.3.4"_s;
    panel.m_pcFirmwareDownloaded = panel.m_otgFirmwareDownloaded = panel.pcUpgradeCompleted = true;
    panel.m_autoRecoverRunning = panel.m_inFailureRetry = true;
    panel.lastDetectedOtgPid = 31;
    panel.lastDetectedPcPid = 14;
    panel.m_lastProgressPercent = 42;
    panel.m_lastProgressTime = QDateTime::currentDateTime();
    panel.m_downloadRetryCount = 2;
    panel.m_upgradePlan = UpgradePlan::Both;
}

/// Members that a model change leaves as they are, with values that differ from a fresh panel's.
void fillKeptState(FirmwareUpgradeWidget &panel)
{
    panel.isChinese = false;
    panel.m_isWaitingForUSB = false;
    panel.m_postUpgradeWaiting = true;
    panel.m_zeroVersionCount = 3;
    panel.m_pcFirmwarePath = u"/pc.bin"_s;
    panel.m_otgFirmwarePath = u"/otg.bin"_s;
    panel.m_pcDownloadUrl = u"http://pc"_s;
    panel.m_otgDownloadUrl = u"http://otg"_s;
}

QString movieFile(const FirmwareUpgradeWidget &panel)
{
    return panel.m_tipMovie->fileName();
}
} // namespace

class ModelChangeTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void sameModelDoesNothing_data();
    void sameModelDoesNothing();
    void logNamesTheModel_data();
    void logNamesTheModel();
    void idlePanelForgetsTheDevice();
    void idlePanelKeepsTheRest();
    void duringAnUpgradeOnlyTheModelChanges();
    void hintFollowsTheModel_data();
    void hintFollowsTheModel();
    void formerMovieStopsAndStays();
    void missingHintWidgetsAreNoProblem();
    void receiversOfTheOtgSignalAreGone();
    void connectedDeviceIsKeptOrLeft_data();
    void connectedDeviceIsKeptOrLeft();
    void reconnectScansTheListTakenBefore();
    void reconnectFindsABrickedDevice();
    void withoutAConnectionTheDeviceIsOpened();
    void asksAgainTwoSecondsLaterOnlyWhenConnected_data();
    void asksAgainTwoSecondsLaterOnlyWhenConnected();
    void everyChangeAsksAgain();
    void aDeletedPanelDoesNotAskAgain();
    void withoutALibraryNothingIsAsked();

private:
    FirmwareUpgradeWidget &panel() { return *m_stage->panel; }
    void openR2();
    QStringList hidLines() const { return m_stage->log.startingWith(u"hid: "_s); }

    std::unique_ptr<PanelStage> m_stage;
};

void ModelChangeTest::init()
{
    m_stage = std::make_unique<PanelStage>();
}

void ModelChangeTest::cleanup()
{
    m_stage.reset();
}

/// An R2 in normal mode is plugged in and open.
void ModelChangeTest::openR2()
{
    const QString path = PanelStage::bus().plug(kR2Pc);
    panel().ConnectingR2({path}, {kR2Pc});
    QVERIFY(panel().m_hidManager->getConnected());
}

void ModelChangeTest::sameModelDoesNothing_data()
{
    QTest::addColumn<int>("model");
    QTest::newRow("R2 on a new panel") << 1;
    QTest::newRow("R1 after R1") << 0;
}

void ModelChangeTest::sameModelDoesNothing()
{
    QFETCH(int, model);
    panel().setDeviceModel(static_cast<DeviceModel>(model));
    fillRunState(panel());
    fillKeptState(panel());
    const QStringList before = panelState(panel());
    const QPointer<QMovie> movie = panel().m_tipMovie;
    QSignalSpy otgConnected(&panel(), &FirmwareUpgradeWidget::r2otgConnected);
    m_stage->log.clear();

    panel().setDeviceModel(static_cast<DeviceModel>(model));
    QCOMPARE(m_stage->log.lines(), QStringList());
    QCOMPARE(panelState(panel()), before);
    QCOMPARE(panel().m_tipMovie, movie);
    Q_EMIT panel().r2otgConnected();
    QCOMPARE(otgConnected.count(), 1);
}

void ModelChangeTest::logNamesTheModel_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("line");
    QTest::newRow("R2 to R1") << 1 << 0 << u"setDeviceModel:R1"_s;
    QTest::newRow("R1 to R2") << 0 << 1 << u"setDeviceModel:R2"_s;
    QTest::newRow("R1 to 2, served as R2") << 0 << 2 << u"setDeviceModel:R2"_s;
}

void ModelChangeTest::logNamesTheModel()
{
    QFETCH(int, from);
    QFETCH(int, to);
    panel().m_deviceModel = static_cast<DeviceModel>(from);
    m_stage->log.clear();

    panel().setDeviceModel(static_cast<DeviceModel>(to));
    QTEST(m_stage->log.lines().value(0), "line");
    QCOMPARE(int(panel().m_deviceModel), to);
}

void ModelChangeTest::idlePanelForgetsTheDevice()
{
    const QStringList fresh = panelState(panel());
    fillRunState(panel());

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(changedState(fresh, panelState(panel())), QStringList(u"m_deviceModel=0"_s));
    QVERIFY(panel().m_lastProgressTime.isNull());
}

void ModelChangeTest::idlePanelKeepsTheRest()
{
    fillKeptState(panel());
    const QStringList before = panelState(panel());

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(changedState(before, panelState(panel())), QStringList(u"m_deviceModel=0"_s));
}

void ModelChangeTest::duringAnUpgradeOnlyTheModelChanges()
{
    openR2();
    fillRunState(panel());
    fillKeptState(panel());
    panel().m_isUpgrading = true;
    const QStringList before = panelState(panel());
    const QPointer<QMovie> movie = panel().m_tipMovie;
    movie->start();
    const QString hint = panel().m_connectHintLb->text();
    const qsizetype timers = panel().findChildren<QTimer *>().size();
    QSignalSpy otgConnected(&panel(), &FirmwareUpgradeWidget::r2otgConnected);
    m_stage->log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(m_stage->log.lines(),
             QStringList({u"setDeviceModel:R1"_s, u"[setDeviceModel] 升级进行中，跳过UI更新"_s}));
    QCOMPARE(changedState(before, panelState(panel())), QStringList(u"m_deviceModel=0"_s));
    QCOMPARE(panel().m_tipMovie, movie);
    QCOMPARE(movie->state(), QMovie::Running);
    QCOMPARE(panel().m_connectHintLb->text(), hint);
    QCOMPARE(panel().findChildren<QTimer *>().size(), timers); // nothing is armed
    QVERIFY(panel().m_hidManager->getConnected());
    Q_EMIT panel().r2otgConnected();
    QCOMPARE(otgConnected.count(), 1);
}

void ModelChangeTest::hintFollowsTheModel_data()
{
    QTest::addColumn<int>("model");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("movie");
    QTest::addColumn<QString>("hint");
    const QString r1Movie = u":/new/prefix1/image/pc.gif"_s;
    const QString r2Movie = u":/new/prefix1/image/dc5v_pc.gif"_s;
    QTest::newRow("R1, Chinese") << 0 << 0 << r1Movie
                                 << u"请使用USB线连接图示USB口和电脑，\n接入后自动完成升级。"_s;
    QTest::newRow("R2, Chinese") << 1 << 0 << r2Movie
                                 << u"请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。"_s;
    QTest::newRow("R1, English")
        << 0 << 1 << r1Movie
        << u"Please use a USB cable to connect the illustrated \nUSB port to the computer. "
           "The upgrade will be\n completed automatically upon connection."_s;
    QTest::newRow("R2, English")
        << 1 << 1 << r2Movie
        << u"To start the firmware update, use the provided USB\n cables to connect the "
           "DC-5V and USB-C ports as\nshown."_s;
}

void ModelChangeTest::hintFollowsTheModel()
{
    QFETCH(int, model);
    QFETCH(int, language);
    QuillonFirmwareUpgrade::setLanguage(static_cast<Language>(language));
    panel().m_deviceModel = static_cast<DeviceModel>(1 - model);

    panel().setDeviceModel(static_cast<DeviceModel>(model));
    QTEST(movieFile(panel()), "movie");
    QTEST(panel().m_connectHintLb->text(), "hint");
    QCOMPARE(panel().tipMoiveLb->movie(), panel().m_tipMovie);
    QCOMPARE(panel().m_tipMovie->parent(), panel().tipMoiveLb);
}

void ModelChangeTest::formerMovieStopsAndStays()
{
    const QPointer<QMovie> former = panel().m_tipMovie;
    former->start();

    panel().setDeviceModel(DeviceModel::R1);
    QVERIFY(panel().m_tipMovie != former);
    QVERIFY(former);
    QCOMPARE(former->state(), QMovie::NotRunning);
    QCOMPARE(panel().m_tipMovie->state(), QMovie::NotRunning);
}

void ModelChangeTest::missingHintWidgetsAreNoProblem()
{
    delete panel().m_connectHintLb;
    panel().m_connectHintLb = nullptr;
    delete panel().tipMoiveLb; // takes the movie with it
    panel().tipMoiveLb = nullptr;
    panel().m_tipMovie = nullptr;

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(panel().m_deviceModel, DeviceModel::R1);
    QVERIFY(!panel().m_tipMovie);
}

void ModelChangeTest::receiversOfTheOtgSignalAreGone()
{
    QSignalSpy hosts(&panel(), &FirmwareUpgradeWidget::r2otgConnected);
    int own = 0;
    connect(&panel(), &FirmwareUpgradeWidget::r2otgConnected, &panel(), [&own] { ++own; });

    panel().setDeviceModel(DeviceModel::R1);
    Q_EMIT panel().r2otgConnected();
    QCOMPARE(hosts.count(), 0);
    QCOMPARE(own, 0);
}

void ModelChangeTest::connectedDeviceIsKeptOrLeft_data()
{
    QTest::addColumn<int>("alsoPresent");
    QTest::addColumn<bool>("isKept");
    // An R2 is open when the panel is told to serve R1.
    QTest::newRow("an R1 in normal mode is on the bus") << kR1Pc << true;
    QTest::newRow("an R1 in its boot loader is on the bus") << kR1PcDfu << true;
    QTest::newRow("only the OTG interface of an R1 is on the bus") << kR1Otg << false;
    QTest::newRow("an R2's boot loader is none of R1's") << kR2PcDfu << false;
    QTest::newRow("nothing else is on the bus") << 0 << false;
}

void ModelChangeTest::connectedDeviceIsKeptOrLeft()
{
    QFETCH(int, alsoPresent);
    QFETCH(bool, isKept);
    openR2();
    if (alsoPresent)
        PanelStage::bus().plug(alsoPresent);
    disconnect(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected, nullptr, nullptr);
    m_stage->log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    if (isKept) {
        QCOMPARE(hidLines(), QStringList(kModeQuery));
        QCOMPARE(missingInOrder(m_stage->log.lines(), {u"setDeviceModel:R1"_s, kSkipLine, kModeQuery}),
                 QString());
        QVERIFY(!m_stage->log.contains(u"1@####"_s));
        QVERIFY(panel().m_hidManager->getConnected());
    } else {
        QCOMPARE(hidLines().mid(0, 3), kReconnect);
        QVERIFY(!m_stage->log.contains(kSkipLine));
        QVERIFY(!m_stage->log.contains(kModeQuery));
        QCOMPARE(m_stage->log.lines().constLast(), u"1@####"_s);
        QVERIFY(!panel().m_hidManager->getConnected());
    }
}

void ModelChangeTest::reconnectScansTheListTakenBefore()
{
    openR2();
    PanelStage::bus().plug(kR2Otg);
    HidCalls::after(u"disconnectDevice"_s, [] { PanelStage::bus().unplugAll(); });
    m_stage->log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    const QStringList steps = kReconnect
        + QStringList{u"[ConnectingR2] START - m_isUpgrading=false m_autoRecoverRunning=false"_s,
                      u"[FirmwareUpgradeWidget定时器扫描] 发现 2 个设备"_s, u"1@####"_s};
    QCOMPARE(missingInOrder(m_stage->log.lines(), steps), QString());
    QCOMPARE(m_stage->log.startingWith(u"hid? getOrvikHIDListPath"_s).size(), 1);
}

void ModelChangeTest::reconnectFindsABrickedDevice()
{
    PanelStage::bus().plug(kR1PcDfu);
    disconnect(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected, nullptr, nullptr);
    QSignalSpy bricked(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected);

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(bricked.count(), 1);
    QVERIFY(panel().m_isUpgrading);
    QCOMPARE(m_stage->log.lines().constLast(), u"1@####"_s);
    panel().m_isUpgrading = false;
}

void ModelChangeTest::withoutAConnectionTheDeviceIsOpened()
{
    const QString path = PanelStage::bus().plug(kR1Pc);
    m_stage->log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    const QStringList calls = kReconnect
        + QStringList{u"hid: openHIDHandle(%1, 0x352f, 0x0001, 0)"_s.arg(path),
                      u"hid: createOrvikSendDataThread()"_s, u"hid: createOrvikReceiveDataThread()"_s};
    QCOMPARE(hidLines(), calls);
    QCOMPARE(PanelStage::bus().opened(), QStringList(path));
    QCOMPARE(m_stage->log.lines().constLast(), u"1@####"_s);
}

void ModelChangeTest::asksAgainTwoSecondsLaterOnlyWhenConnected_data()
{
    QTest::addColumn<bool>("isKept");
    QTest::addColumn<bool>("isPresent");
    QTest::addColumn<bool>("isConnectedThen");
    QTest::newRow("kept connection") << true << true << true;
    QTest::newRow("kept connection that is gone by then") << true << true << false;
    QTest::newRow("new connection") << false << true << true;
    QTest::newRow("new connection that is gone by then") << false << true << false;
    QTest::newRow("no device at all") << false << false << false;
}

void ModelChangeTest::asksAgainTwoSecondsLaterOnlyWhenConnected()
{
    QFETCH(bool, isKept);
    QFETCH(bool, isPresent);
    QFETCH(bool, isConnectedThen);
    QTRY_VERIFY_WITH_TIMEOUT(m_stage->log.contains(kModeQuery),
                             kPatience); // the one that every new panel asks
    if (isKept)
        openR2();
    if (isPresent)
        PanelStage::bus().plug(kR1Pc);
    m_stage->log.clear();
    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(m_stage->log.contains(kSkipLine), isKept);
    QCOMPARE(panel().m_hidManager->getConnected(), isPresent);
    if (!isConnectedThen) {
        PanelStage::bus().unplugAll();
        QTRY_VERIFY_WITH_TIMEOUT(!panel().m_hidManager->getConnected(), kPatience);
    }
    m_stage->log.clear();

    // Comes after the panel's own timer.
    bool isOver = false;
    QTimer::singleShot(2600ms, this, [&isOver] { isOver = true; });
    QTRY_VERIFY_WITH_TIMEOUT(isOver, kPatience);
    QCOMPARE(m_stage->log.count(kLateQueryLine), isConnectedThen ? 1 : 0);
    QCOMPARE(m_stage->log.count(kModeQuery), isConnectedThen ? 1 : 0);
    const QStringList steps = isConnectedThen ? QStringList{kLateQueryLine, kModeQuery} : QStringList();
    QCOMPARE(missingInOrder(m_stage->log.lines(), steps), QString());
}

void ModelChangeTest::everyChangeAsksAgain()
{
    openR2();
    panel().setDeviceModel(DeviceModel::R1);
    panel().setDeviceModel(DeviceModel::R2);
    QVERIFY(panel().m_hidManager->getConnected());

    QTRY_COMPARE_WITH_TIMEOUT(m_stage->log.count(kLateQueryLine), 2, kPatience);
}

void ModelChangeTest::aDeletedPanelDoesNotAskAgain()
{
    PanelStage::bus().plug(kR1Pc);
    panel().setDeviceModel(DeviceModel::R1);
    FirmwareUpgradeWidget later;
    m_stage->panel.reset();
    m_stage->log.clear();
    later.setDeviceModel(DeviceModel::R1);

    // The deleted panel's turn would have come before this one's.
    QTRY_VERIFY_WITH_TIMEOUT(m_stage->log.contains(kLateQueryLine), kPatience);
    QCOMPARE(m_stage->log.count(kLateQueryLine), 1);
}

void ModelChangeTest::withoutALibraryNothingIsAsked()
{
    panel().m_hidManager->release();
    panel().m_hidManager = nullptr;
    fillRunState(panel());
    m_stage->log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(panel().m_upgradePlan, UpgradePlan::None);
    QCOMPARE(m_stage->log.lines(), QStringList(u"setDeviceModel:R1"_s));
}

QUILLON_TEST(ModelChangeTest)
#include "tst_model_change.moc"
