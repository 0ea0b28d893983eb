// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Choosing the model: what is forgotten, what is shown, and how the panel gets to the device of the new
// model.
#include "tests/panel/PanelTest.h"
#include "tests/support/HidCalls.h"
#include "tests/support/LogOrder.h"
#include "tests/support/TestProgram.h"

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
void fillRunState(OpenPanel &panel)
{
    panel.pretendDeviceVersion(Chip::Pc, u"1.2.3"_s);
    panel.pretendDeviceVersion(Chip::Otg, u"1.2.4"_s);
    panel.pretendServerVersion(Chip::Pc, u"1.3.3"_s);
    panel.pretendServerVersion(Chip::Otg, u"1.3.4"_s);
    panel.pretendImage(Chip::Pc, true);
    panel.pretendImage(Chip::Otg, true);
    panel.pretendPcDone(true);
    panel.pretendRecovering(true);
    panel.pretendRetryOffer(true);
    panel.pretendLastSeenId(Chip::Otg, 31);
    panel.pretendLastSeenId(Chip::Pc, 14);
    panel.pretendLastPercent(42);
    panel.pretendLastPercentSince(QDateTime::currentDateTime());
    panel.pretendDownloadRetries(2);
    panel.pretendPlan(UpgradePlan::Both);
}

/// Members that a model change leaves as they are, with values that differ from a fresh panel's.
void fillKeptState(OpenPanel &panel)
{
    panel.pretendChinese(false);
    panel.pretendWaitingForCable(false);
    panel.pretendAwaitingNewVersions(true);
    panel.pretendNotReadyReplies(3);
    panel.pretendImagePath(Chip::Pc, u"/pc.bin"_s);
    panel.pretendImagePath(Chip::Otg, u"/otg.bin"_s);
    panel.pretendImageAddress(Chip::Pc, u"http://pc"_s);
    panel.pretendImageAddress(Chip::Otg, u"http://otg"_s);
}

QString movieFile(const OpenPanel &panel)
{
    return panel.movie()->fileName();
}
} // namespace

class ModelChangeTest : public PanelTest {
    Q_OBJECT

private slots:
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
    void moviesDoNotHeapUp();
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
    void openR2();
    QStringList hidLines() const { return stage().log.startingWith(u"hid: "_s); }
};

/// An R2 in normal mode is plugged in and open.
void ModelChangeTest::openR2()
{
    const QString path = PanelStage::bus().plug(kR2Pc);
    panel().seeDevices({path}, {kR2Pc});
    QVERIFY(panel().isDeviceOpen());
}

void ModelChangeTest::sameModelDoesNothing_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::newRow("R2 on a new panel") << DeviceModel::R2;
    QTest::newRow("R1 after R1") << DeviceModel::R1;
}

void ModelChangeTest::sameModelDoesNothing()
{
    QFETCH(DeviceModel, model);
    panel().setDeviceModel(model);
    fillRunState(panel());
    fillKeptState(panel());
    const QStringList before = panel().state();
    const QPointer<QMovie> movie = panel().movie();
    QSignalSpy otgConnected(&panel(), &FirmwareUpgradeWidget::r2otgConnected);
    stage().log.clear();

    panel().setDeviceModel(model);
    QCOMPARE(stage().log.lines(), QStringList());
    QCOMPARE(panel().state(), before);
    QCOMPARE(panel().movie(), movie);
    Q_EMIT panel().r2otgConnected();
    QCOMPARE(otgConnected.count(), 1);
}

void ModelChangeTest::logNamesTheModel_data()
{
    QTest::addColumn<DeviceModel>("from");
    QTest::addColumn<DeviceModel>("to");
    QTest::addColumn<QString>("line");
    QTest::newRow("R2 to R1") << DeviceModel::R2 << DeviceModel::R1 << u"setDeviceModel: R1"_s;
    QTest::newRow("R1 to R2") << DeviceModel::R1 << DeviceModel::R2 << u"setDeviceModel: R2"_s;
    QTest::newRow("R1 to 2, served as R2") << DeviceModel::R1 << DeviceModel(2) << u"setDeviceModel: R2"_s;
}

void ModelChangeTest::logNamesTheModel()
{
    QFETCH(DeviceModel, from);
    QFETCH(DeviceModel, to);
    panel().pretendModel(from);
    stage().log.clear();

    panel().setDeviceModel(to);
    QTEST(stage().log.lines().value(0), "line");
    QCOMPARE(panel().model(), to);
}

void ModelChangeTest::idlePanelForgetsTheDevice()
{
    const QStringList fresh = panel().state();
    fillRunState(panel());

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(changedState(fresh, panel().state()), QStringList(u"m_deviceModel=0"_s));
    QVERIFY(panel().lastPercentSince().isNull());
}

void ModelChangeTest::idlePanelKeepsTheRest()
{
    fillKeptState(panel());
    const QStringList before = panel().state();

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(changedState(before, panel().state()), QStringList(u"m_deviceModel=0"_s));
}

void ModelChangeTest::duringAnUpgradeOnlyTheModelChanges()
{
    openR2();
    fillRunState(panel());
    fillKeptState(panel());
    panel().pretendUpgrading(true);
    const QStringList before = panel().state();
    const QPointer<QMovie> movie = panel().movie();
    movie->start();
    const QString hint = panel().cableHint()->text();
    const qsizetype timers = panel().findChildren<QTimer *>().size();
    QSignalSpy otgConnected(&panel(), &FirmwareUpgradeWidget::r2otgConnected);
    stage().log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(stage().log.lines(),
             QStringList({u"setDeviceModel: R1"_s, u"[setDeviceModel] 升级进行中，跳过UI更新"_s}));
    QCOMPARE(changedState(before, panel().state()), QStringList(u"m_deviceModel=0"_s));
    QCOMPARE(panel().movie(), movie);
    QCOMPARE(movie->state(), QMovie::Running);
    QCOMPARE(panel().cableHint()->text(), hint);
    QCOMPARE(panel().findChildren<QTimer *>().size(), timers); // nothing is armed
    QVERIFY(panel().isDeviceOpen());
    Q_EMIT panel().r2otgConnected();
    QCOMPARE(otgConnected.count(), 1);
}

void ModelChangeTest::hintFollowsTheModel_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("movie");
    QTest::addColumn<QString>("hint");
    const QString r1Movie = u":/new/prefix1/image/pc.gif"_s;
    const QString r2Movie = u":/new/prefix1/image/dc5v_pc.gif"_s;
    QTest::newRow("R1, Chinese") << DeviceModel::R1 << Language::Chinese << r1Movie
                                 << u"请使用USB线连接图示USB口和电脑，\n接入后自动完成升级。"_s;
    QTest::newRow("R2, Chinese") << DeviceModel::R2 << Language::Chinese << r2Movie
                                 << u"请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。"_s;
    QTest::newRow("R1, English")
        << DeviceModel::R1 << Language::English << r1Movie
        << u"Please use a USB cable to connect the illustrated \nUSB port to the computer. "
           "The upgrade will be\n completed automatically upon connection."_s;
    QTest::newRow("R2, English")
        << DeviceModel::R2 << Language::English << r2Movie
        << u"To start the firmware update, use the provided USB\n cables to connect the "
           "DC-5V and USB-C ports as\nshown."_s;
}

void ModelChangeTest::hintFollowsTheModel()
{
    QFETCH(DeviceModel, model);
    QFETCH(Language, language);
    QuillonFirmwareUpgrade::setLanguage(language);
    panel().pretendModel(model == DeviceModel::R1 ? DeviceModel::R2 : DeviceModel::R1);

    panel().setDeviceModel(model);
    QTEST(movieFile(panel()), "movie");
    QTEST(panel().cableHint()->text(), "hint");
    QCOMPARE(panel().animation()->movie(), panel().movie());
    QCOMPARE(panel().movie()->parent(), panel().animation());
}

void ModelChangeTest::formerMovieStopsAndStays()
{
    const QPointer<QMovie> former = panel().movie();
    former->start();

    panel().setDeviceModel(DeviceModel::R1);
    QVERIFY(panel().movie() != former);
    QVERIFY(former);
    QCOMPARE(former->state(), QMovie::NotRunning);
    QCOMPARE(panel().movie()->state(), QMovie::NotRunning);
}

void ModelChangeTest::moviesDoNotHeapUp()
{
    for (int changes = 0; changes < 5; ++changes) {
        for (const DeviceModel model : {DeviceModel::R1, DeviceModel::R2}) {
            panel().movie()->start();
            panel().setDeviceModel(model);
        }
    }
    QCOMPARE(panel().animation()->findChildren<QMovie *>().size(), 2); // the one that is shown and the former
}

void ModelChangeTest::missingHintWidgetsAreNoProblem()
{
    panel().lose(Part::CableHint);
    panel().lose(Part::Animation);
    panel().forget(Part::Movie); // it went with the animation

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(panel().model(), DeviceModel::R1);
    QVERIFY(!panel().movie());
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
    stage().log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    if (isKept) {
        QCOMPARE(hidLines(), QStringList(kModeQuery));
        QCOMPARE(missingInOrder(stage().log.lines(), {u"setDeviceModel: R1"_s, kSkipLine, kModeQuery}),
                 QString());
        QVERIFY(!stage().log.contains(u"1@####"_s));
        QVERIFY(panel().isDeviceOpen());
    } else {
        QCOMPARE(hidLines().mid(0, 3), kReconnect);
        QVERIFY(!stage().log.contains(kSkipLine));
        QVERIFY(!stage().log.contains(kModeQuery));
        QCOMPARE(stage().log.lines().constLast(), u"1@####"_s);
        QVERIFY(!panel().isDeviceOpen());
    }
}

void ModelChangeTest::reconnectScansTheListTakenBefore()
{
    openR2();
    PanelStage::bus().plug(kR2Otg);
    HidCalls::after(u"disconnectDevice"_s, [] { PanelStage::bus().unplugAll(); });
    stage().log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    const QStringList steps = kReconnect
        + QStringList{u"[ConnectingR2] START - m_isUpgrading= false  m_autoRecoverRunning= false"_s,
                      u"[FirmwareUpgradeWidget定时器扫描] 发现  2  个设备"_s, u"1@####"_s};
    QCOMPARE(missingInOrder(stage().log.lines(), steps), QString());
    QCOMPARE(stage().log.startingWith(u"hid? getOrvikHIDListPath"_s).size(), 1);
}

void ModelChangeTest::reconnectFindsABrickedDevice()
{
    PanelStage::bus().plug(kR1PcDfu);
    disconnect(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected, nullptr, nullptr);
    QSignalSpy bricked(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected);

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(bricked.count(), 1);
    QVERIFY(panel().isUpgrading());
    QCOMPARE(stage().log.lines().constLast(), u"1@####"_s);
    panel().pretendUpgrading(false);
}

void ModelChangeTest::withoutAConnectionTheDeviceIsOpened()
{
    const QString path = PanelStage::bus().plug(kR1Pc);
    stage().log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    const QStringList calls = kReconnect
        + QStringList{u"hid: openHIDHandle(%1, 0x352f, 0x0001, 0)"_s.arg(path),
                      u"hid: createOrvikSendDataThread()"_s, u"hid: createOrvikReceiveDataThread()"_s};
    QCOMPARE(hidLines(), calls);
    QCOMPARE(PanelStage::bus().opened(), QStringList(path));
    QCOMPARE(stage().log.lines().constLast(), u"1@####"_s);
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
    QTRY_VERIFY_WITH_TIMEOUT(stage().log.contains(kModeQuery),
                             kPatience); // the one that every new panel asks
    if (isKept)
        openR2();
    if (isPresent)
        PanelStage::bus().plug(kR1Pc);
    stage().log.clear();
    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(stage().log.contains(kSkipLine), isKept);
    QCOMPARE(panel().isDeviceOpen(), isPresent);
    if (!isConnectedThen) {
        PanelStage::bus().unplugAll();
        QTRY_VERIFY_WITH_TIMEOUT(!panel().isDeviceOpen(), kPatience);
    }
    stage().log.clear();

    // Comes after the panel's own timer.
    bool isOver = false;
    QTimer::singleShot(2600ms, this, [&isOver] { isOver = true; });
    QTRY_VERIFY_WITH_TIMEOUT(isOver, kPatience);
    QCOMPARE(stage().log.count(kLateQueryLine), isConnectedThen ? 1 : 0);
    QCOMPARE(stage().log.count(kModeQuery), isConnectedThen ? 1 : 0);
    const QStringList steps = isConnectedThen ? QStringList{kLateQueryLine, kModeQuery} : QStringList();
    QCOMPARE(missingInOrder(stage().log.lines(), steps), QString());
}

void ModelChangeTest::everyChangeAsksAgain()
{
    openR2();
    panel().setDeviceModel(DeviceModel::R1);
    panel().setDeviceModel(DeviceModel::R2);
    QVERIFY(panel().isDeviceOpen());

    QTRY_COMPARE_WITH_TIMEOUT(stage().log.count(kLateQueryLine), 2, kPatience);
}

void ModelChangeTest::aDeletedPanelDoesNotAskAgain()
{
    PanelStage::bus().plug(kR1Pc);
    panel().setDeviceModel(DeviceModel::R1);
    FirmwareUpgradeWidget later;
    stage().panel.reset();
    stage().log.clear();
    later.setDeviceModel(DeviceModel::R1);

    // The deleted panel's turn would have come before this one's.
    QTRY_VERIFY_WITH_TIMEOUT(stage().log.contains(kLateQueryLine), kPatience);
    QCOMPARE(stage().log.count(kLateQueryLine), 1);
}

void ModelChangeTest::withoutALibraryNothingIsAsked()
{
    panel().lose(Part::Library);
    fillRunState(panel());
    stage().log.clear();

    panel().setDeviceModel(DeviceModel::R1);
    QCOMPARE(panel().plan(), UpgradePlan::None);
    QCOMPARE(stage().log.lines(), QStringList(u"setDeviceModel: R1"_s));
}

QUILLON_TEST(ModelChangeTest)
#include "tst_model_change.moc"
