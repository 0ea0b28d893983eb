// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Which nodes the library lists, which it opens, and when it tries again.
#include "MockBusTest.h"
#include "MockUdevd.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Takes root's privilege to open any file from the calling thread.
class WithoutPrivilege {
public:
    WithoutPrivilege()
    {
        syscall(SYS_capget, &m_header, m_data);
        __user_cap_data_struct reduced[] = {m_data[0], m_data[1]};
        reduced[0].effective &= ~(CAP_TO_MASK(CAP_DAC_OVERRIDE) | CAP_TO_MASK(CAP_DAC_READ_SEARCH));
        syscall(SYS_capset, &m_header, reduced);
    }
    ~WithoutPrivilege() { syscall(SYS_capset, &m_header, m_data); }
    WithoutPrivilege(const WithoutPrivilege &) = delete;
    WithoutPrivilege &operator=(const WithoutPrivilege &) = delete;

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_data[_LINUX_CAPABILITY_U32S_3] = {};
};

/// Lets this process open nothing more.
class WithoutDescriptors {
public:
    WithoutDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &m_limit);
        const int lowestFree = dup(STDIN_FILENO);
        close(lowestFree);
        const rlimit reduced{rlim_t(lowestFree), m_limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &reduced);
    }
    ~WithoutDescriptors() { setrlimit(RLIMIT_NOFILE, &m_limit); }
    WithoutDescriptors(const WithoutDescriptors &) = delete;
    WithoutDescriptors &operator=(const WithoutDescriptors &) = delete;

private:
    rlimit m_limit{};
};

} // namespace

Q_DECLARE_METATYPE(MockIdentity)

class HidNodesTest : public MockBusTest {
    Q_OBJECT

private Q_SLOTS:
    void foreignDeviceIsIgnored_data();
    void foreignDeviceIsIgnored();
    void nodeWithoutTheReportIdIsListedAndNotOpened();
    void nodeThatDoesNotTellItsReportsIsOpened();
    void nodeThatPassedToAnotherDeviceIsNotOpened_data();
    void nodeThatPassedToAnotherDeviceIsNotOpened();
    void failedListingIsNoLoss();
    void refusedNodeIsOpenedByALaterScan_data();
    void refusedNodeIsOpenedByALaterScan();
    void unsettledNodeIsOpenedOnceUdevdIsDone();
};

void HidNodesTest::foreignDeviceIsIgnored_data()
{
    QTest::addColumn<int>("vendorId");
    QTest::newRow("another vendor") << 0x046D;
    QTest::newRow("the vendor before") << 0x352E;
    QTest::newRow("the vendor after") << 0x3530;
    QTest::newRow("no vendor") << 0;
}

void HidNodesTest::foreignDeviceIsIgnored()
{
    QFETCH(int, vendorId);

    const auto foreign = bus().plug({vendorId, 0x000E});
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    QVERIFY(!manager().openHIDHandle(foreign->path(), vendorId, 0x000E, 0));
    QVERIFY(!open(*foreign));
    QCOMPARE(foreign->openHandles(), 0);
}

void HidNodesTest::nodeWithoutTheReportIdIsListedAndNotOpened()
{
    const auto consumerControl = bus().plug({0x352F, 0x000E, 0x01});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({consumerControl->path()}), kPatienceMs);
    QVERIFY(!open(*consumerControl));

    // Listed behind it although it is younger, so that whoever opens the last one gets one that opens.
    answerAsAPanel();
    const auto device = bus().plug();
    const auto keyboard = bus().plug({0x352F, 0x000E, 0x02});
    const QStringList usableLast{consumerControl->path(), keyboard->path(), device->path()};
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound(usableLast), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    QCOMPARE(consumerControl->openHandles() + keyboard->openHandles(), 0);
}

/// It is given the benefit of the doubt, and one that tells is given the preference.
void HidNodesTest::nodeThatDoesNotTellItsReportsIsOpened()
{
    const auto silent = bus().plug({}, [](MockDevice &unseen) { unseen.setTellsReports(false); });
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({silent->path()}), kPatienceMs);
    QVERIFY(open(*silent));
    startThreads();
    QVERIFY(isServed(*silent));
    manager().disconnectDevice(0);

    const auto telling = bus().plug();
    const auto keyboard = bus().plug({0x352F, 0x000E, 0x02});
    const auto alsoSilent = bus().plug({}, [](MockDevice &unseen) { unseen.setTellsReports(false); });
    const QStringList preferredLast{keyboard->path(), silent->path(), alsoSilent->path(), telling->path()};
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound(preferredLast), kPatienceMs);
}

void HidNodesTest::nodeThatPassedToAnotherDeviceIsNotOpened_data()
{
    QTest::addColumn<MockIdentity>("successor");
    QTest::newRow("of another vendor") << MockIdentity{0x046D, 0x000E};
    QTest::newRow("another of the family") << MockIdentity{0x352F, 0x001F};
    QTest::newRow("without the report ID") << MockIdentity{0x352F, 0x000E, 0x02};
}

/// The system's list may be older than the device behind the name.
void HidNodesTest::nodeThatPassedToAnotherDeviceIsNotOpened()
{
    QFETCH(MockIdentity, successor);

    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    device->setIdentity(successor);
    QVERIFY(!open(*device));
    QVERIFY(!manager().getConnected());
    QCOMPARE(device->openHandles(), 0);
    device->setIdentity({});
    QVERIFY(open(*device));
}

/// A process that has no descriptors left cannot look at the bus, and knows of no unplug therefore.
void HidNodesTest::failedListingIsNoLoss()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    recorder().clear();
    {
        const LogCapture log;
        const WithoutDescriptors guard;
        QStringList paths;
        QList<int> productIds;
        manager().getOrvikHIDListPath(paths, productIds);
        QVERIFY(paths.isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(log.lines().size(), 1, kPatienceMs);
        QVERIFY2(log.lines().first().contains(QLatin1String("does not list its devices")),
                 qPrintable(log.lines().first()));
    }
    QVERIFY(manager().getConnected());
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    QVERIFY(!recorder().lists().contains(QStringList()));
    QVERIFY(recorder().statuses().isEmpty());
    QVERIFY(isServed(*device));
}

using Change = void (MockDevice::*)(bool);

void HidNodesTest::refusedNodeIsOpenedByALaterScan_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("listed");
    QTest::newRow("may not be opened yet") << &MockDevice::setPermitted << true;
    QTest::newRow("does not answer as a hidraw node yet") << &MockDevice::setReady << true;
    QTest::newRow("has no device file yet") << &MockDevice::setNodePresent << false;
}

/// No event tells of the change: the periodic scan has to find it.
void HidNodesTest::refusedNodeIsOpenedByALaterScan()
{
    QFETCH(Change, change);
    QFETCH(bool, listed);

    const WithoutPrivilege guard;
    answerAsAPanel();
    const auto device = bus().plug({}, [change](MockDevice &unseen) { (unseen.*change)(false); });
    const QStringList expected = listed ? QStringList{device->path()} : QStringList();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().count(expected) >= 2, kPatienceMs);
    QVERIFY(!open(*device));
    QVERIFY(!manager().getConnected());
    QVERIFY(recorder().statuses().isEmpty());
    QCOMPARE(device->openHandles(), 0);

    ((*device).*change)(true);
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), QList<int>{0}, kPatienceMs);
}

void HidNodesTest::unsettledNodeIsOpenedOnceUdevdIsDone()
{
    const bool udevdRuns = MockUdevd::running();
    MockUdevd::setNodesSettled(false);
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    // Without udevd nobody would ever settle it.
    QCOMPARE(open(*device), !udevdRuns);
    MockUdevd::setNodesSettled(true);
    QVERIFY(open(*device));
    startThreads();
    QVERIFY(isServed(*device));
}

QUILLON_TEST_CORE(HidNodesTest)
#include "tst_hid_nodes.moc"
