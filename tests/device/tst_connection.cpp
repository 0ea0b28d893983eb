// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Opening the device, losing it, finding it again.
#include "tests/device/ScanTest.h"
#include "tests/device/Scans.h"
#include "tests/support/DeviceReplies.h"
#include "tests/support/TestProgram.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Scans;
using HIDCommunicator::OrvikHIDManager;

class ConnectionTest : public ScanTest {
    Q_OBJECT

private slots:
    void deviceIsOpenedWithBothThreads();
    void lastOfSeveralIsOpened();
    void refusedOpenIsTriedAgainByTheNextScan();
    void secondScanOpensNothing();
    void normalDeviceWinsOverBootLoader();
    void switchedModelNamesTheProductIdOfTheOpen();

    void connectionStatus_data();
    void connectionStatus();
    void connectionStatusChangesNoMember();

    void signalsOfTheLibraryWaitForTheEventLoop_data();
    void signalsOfTheLibraryWaitForTheEventLoop();
    void pluggedDeviceIsOpenedByItself();
    void deviceOfTheOtherModelIsLeftAlone();
    void removedDeviceIsFoundAgain();
    void refusedDeviceIsOpenedWithoutBeingPluggedAgain();
    void questionAskedBeforeThePlugIsAnsweredAfterIt();

private:
    QStringList commands() const { return stage().log.startingWith(u"hid: "_s); }
};

void ConnectionTest::deviceIsOpenedWithBothThreads()
{
    // The spelling is the bus's own and has to come back as it was.
    const QString own = u"\\\\?\\HID#VID_352F&PID_000E#7&2"_s;
    PanelStage::bus().plugPath(own, 0x000E);

    panel().seeDevices({own});
    QCOMPARE(lines(),
             QStringList({
                 u"[ConnectingR2] START - m_isUpgrading= false  m_autoRecoverRunning= false"_s,
                 u"[FirmwareUpgradeWidget定时器扫描] 发现  1  个设备"_s,
                 u"2pid is:  000e"_s,
                 u"find R2 device"_s,
                 foundLine(u"P"_s),
                 u"hid? getConnected() = false"_s,
                 u"hid: openHIDHandle(%1, 0x352f, 0x000e, 0)"_s.arg(own),
                 u"hid: createOrvikSendDataThread()"_s,
                 u"hid: createOrvikReceiveDataThread()"_s,
                 u"connected R2 successfully!!!"_s,
             }));
    QCOMPARE(PanelStage::bus().openConnections(), 1);
}

void ConnectionTest::lastOfSeveralIsOpened()
{
    const QString first = PanelStage::bus().plug(0x000E, 1);
    const QString second = PanelStage::bus().plug(0x000E, 2);

    panel().seeDevices({first, second});
    QCOMPARE(PanelStage::bus().opened(), QStringList(second));
}

void ConnectionTest::refusedOpenIsTriedAgainByTheNextScan()
{
    const QString device = PanelStage::bus().plug(0x000E);
    PanelStage::bus().refuseOpen(true);
    panel().seeDevices({device});
    QCOMPARE(commands(), QStringList(u"hid: openHIDHandle(%1, 0x352f, 0x000e, 0)"_s.arg(device)));
    QVERIFY(!stage().log.contains(u"connected R2 successfully!!!"_s));
    QCOMPARE(lines().constLast(), commands().constLast()); // silently

    PanelStage::bus().refuseOpen(false);
    panel().seeDevices({device});
    QVERIFY(stage().log.contains(u"connected R2 successfully!!!"_s));
}

void ConnectionTest::secondScanOpensNothing()
{
    const QString device = PanelStage::bus().plug(0x000E);
    panel().seeDevices({device});
    stage().log.clear();

    panel().seeDevices({device});
    QCOMPARE(commands(), QStringList());
    QCOMPARE(lines().constLast(), u"hid? getConnected() = true"_s);
    QCOMPARE(PanelStage::bus().opened().size(), 1);
}

void ConnectionTest::normalDeviceWinsOverBootLoader()
{
    const QString device = PanelStage::bus().plug(0x000E);
    QSignalSpy bricked(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected);

    panel().seeDevices({path(u"00ff"_s), device, path(u"00ff"_s)});
    QCOMPARE(PanelStage::bus().opened(), QStringList(device));
    QCOMPARE(bricked.count(), 0);
    QVERIFY(!panel().isUpgrading());
    QVERIFY(!panel().isRecovering());
    QCOMPARE(panel().lastSeenId(Chip::Pc), 255); // the last PC match of the list
}

void ConnectionTest::switchedModelNamesTheProductIdOfTheOpen()
{
    const QString device = PanelStage::bus().plug(0x000E);

    panel().seeDevices({device, path(u"0010"_s)});
    QCOMPARE(commands(), QStringList(u"hid: openHIDHandle(%1, 0x352f, 0x0001, 0)"_s.arg(device)));
}

void ConnectionTest::connectionStatus_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("the device went away: both threads are stopped")
        << 1
        << QStringList{u"\n[状态] 设备已断开！定时器应该切换到1秒快速扫描"_s,
                       u"hid: closeOrvikSendDataThread()"_s, u"hid: closeOrvikReceiveDataThread()"_s};
    QTest::newRow("the device is connected") << 0 << QStringList(u"[状态] 设备连接信号"_s);
    QTest::newRow("2 means nothing") << 2 << QStringList();
    QTest::newRow("-1 means nothing") << -1 << QStringList();
}

void ConnectionTest::connectionStatus()
{
    QFETCH(int, status);

    panel().connectionChanges(status);
    QTEST(lines(), "expected");
}

void ConnectionTest::connectionStatusChangesNoMember()
{
    panel().pretendLastSeenId(Chip::Pc, 14);
    panel().pretendDeviceVersion(Chip::Pc, u"1.2.3"_s);
    panel().pretendUpgrading(true);
    const QStringList before = panel().state();

    panel().connectionChanges(1);
    panel().connectionChanges(0);
    QCOMPARE(panel().state(), before);
}

void ConnectionTest::signalsOfTheLibraryWaitForTheEventLoop_data()
{
    using Action = std::function<void()>;
    QTest::addColumn<Action>("emitSignal");
    QTest::addColumn<QString>("reaction");
    OrvikHIDManager *library = OrvikHIDManager::instance();
    QTest::newRow("devices on the bus")
        << Action([library] { Q_EMIT library->deviceListChanged({path(u"4321"_s)}, {}); })
        << u"2pid is:  4321"_s;
    QTest::newRow("a report") << Action([library] {
        Q_EMIT library->blockReceiveData(DeviceReplies::mode(0));
    }) << u" receive dfu mode is:  off"_s;
    QTest::newRow("a connection") << Action([library] { Q_EMIT library->blockHidConnetStatus(0); })
                                  << u"[状态] 设备连接信号"_s;
}

void ConnectionTest::signalsOfTheLibraryWaitForTheEventLoop()
{
    QFETCH(std::function<void()>, emitSignal);
    QFETCH(QString, reaction);

    emitSignal();
    QVERIFY(!stage().log.contains(reaction));
    QTRY_COMPARE(stage().log.count(reaction), 1);
}

void ConnectionTest::pluggedDeviceIsOpenedByItself()
{
    const QString device = PanelStage::bus().plug(0x000E);

    QTRY_COMPARE(PanelStage::bus().opened(), QStringList(device));
    QTRY_VERIFY(stage().log.contains(u"[状态] 设备连接信号"_s));
    QCOMPARE(panel().lastSeenId(Chip::Pc), 14);
}

void ConnectionTest::deviceOfTheOtherModelIsLeftAlone()
{
    PanelStage::bus().plug(0x0001);

    QTRY_VERIFY(stage().log.contains(u"2pid is:  0001"_s));
    QCOMPARE(commands(), QStringList());
    QCOMPARE(panel().model(), DeviceModel::R2);
}

void ConnectionTest::removedDeviceIsFoundAgain()
{
    const QString device = PanelStage::bus().plug(0x000E);
    QTRY_COMPARE(PanelStage::bus().openConnections(), 1);
    stage().log.clear();

    PanelStage::bus().unplug(0x000E);
    QTRY_VERIFY(stage().log.contains(u"\n[状态] 设备已断开！定时器应该切换到1秒快速扫描"_s));
    QTRY_COMPARE(PanelStage::bus().openConnections(), 0);
    QVERIFY(!panel().isDeviceOpen());
    QCOMPARE(panel().lastSeenId(Chip::Pc), 14); // remembered

    PanelStage::bus().plug(0x000E);
    QTRY_COMPARE(PanelStage::bus().opened(), QStringList({device, device}));
}

void ConnectionTest::refusedDeviceIsOpenedWithoutBeingPluggedAgain()
{
    PanelStage::bus().refuseOpen(true);
    const QString device = PanelStage::bus().plug(0x000E);
    QTRY_VERIFY(!commands().isEmpty());

    PanelStage::bus().refuseOpen(false);
    QTRY_COMPARE(PanelStage::bus().opened(), QStringList(device));
}

void ConnectionTest::questionAskedBeforeThePlugIsAnsweredAfterIt()
{
    QTRY_VERIFY(!stage().log.startingWith(u"hid: DC_AddSendData"_s).isEmpty());
    PanelStage::bus().setResponder(DeviceReplies::device({1, 2, 3}, {1, 2, 4}));

    PanelStage::bus().plug(0x000E);
    QTRY_COMPARE(panel().deviceVersion(Chip::Otg), u"1.2.4"_s);
    QCOMPARE(panel().deviceVersion(Chip::Pc), u"1.2.3"_s);
}

QUILLON_TEST(ConnectionTest)
#include "tst_connection.moc"
