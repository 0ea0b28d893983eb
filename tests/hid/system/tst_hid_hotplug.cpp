// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Devices come, are served, and go.
#include "MockBusTest.h"
#include "MockUdevd.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QSet>
#include <QtTest>

#include <fcntl.h>

namespace {

/// The device files and the event counters of this process: umockdev keeps sockets besides.
QSet<int> descriptors()
{
    QSet<int> found;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    for (const QFileInfo &entry : folder.entryInfoList(QDir::System | QDir::Files)) {
        const QString target = entry.symLinkTarget();
        if (target.contains(QLatin1String("/dev/pts/")) || target.contains(QLatin1String("[eventfd]")))
            found.insert(entry.fileName().toInt());
    }
    return found;
}

} // namespace

class HidHotplugTest : public MockBusTest {
    Q_OBJECT

private Q_SLOTS:
    void eventsComeFromWhereTheyMeanAReadyNode();
    void everyLengthComesThrough_data();
    void everyLengthComesThrough();
    void deviceHasOneDescriptorThatNobodyInherits();
    void deviceThatIsNotReadyToTakeAReportGetsItLater();
    void reportThatIsTakenInPartIsALoss();
    void failedReadIsALossThoughTheDeviceStays();
    void deviceComesBackUnderAnotherNode();
};

void HidHotplugTest::eventsComeFromWhereTheyMeanAReadyNode()
{
    QCOMPARE(MockUdevd::monitoredGroup(), MockUdevd::running() ? QByteArray("udev") : QByteArray("kernel"));
}

void HidHotplugTest::everyLengthComesThrough_data()
{
    QTest::addColumn<int>("bytes");
    QTest::newRow("the report ID alone") << 1;
    QTest::newRow("short") << 5;
    QTest::newRow("one byte less") << 64;
    QTest::newRow("as it should be") << 65;
    QTest::newRow("one byte more") << 66;
    QTest::newRow("long") << 4096;
}

void HidHotplugTest::everyLengthComesThrough()
{
    QFETCH(int, bytes);

    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    const QByteArray sent = QByteArray(1, '\x51') + QByteArray(bytes - 1, '\xA5');
    device->send(sent);
    QTRY_COMPARE_WITH_TIMEOUT(recorder().reports(), QList<QByteArray>{sent.sliced(1)}, kPatienceMs);
    QVERIFY(isServed(*device));
}

void HidHotplugTest::deviceHasOneDescriptorThatNobodyInherits()
{
    const auto device = bus().plug();
    const QSet<int> before = descriptors();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    QCOMPARE(device->openHandles(), 1);
    const QSet<int> opened = descriptors().subtract(before);
    QCOMPARE(opened.size(), 2); // the device and what ends a wait for it
    for (const int descriptor : opened)
        QVERIFY2(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, qPrintable(QString::number(descriptor)));

    QVERIFY(manager().disconnectDevice(0));
    QTRY_COMPARE_WITH_TIMEOUT(descriptors(), before, kPatienceMs);
}

void HidHotplugTest::deviceThatIsNotReadyToTakeAReportGetsItLater()
{
    constexpr int kNothingYet = -1;
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    device->setTaking(kNothingYet);
    manager().DC_AddSendData(report(1));
    manager().DC_AddSendData(report(2));
    QTest::qWait(100);
    QVERIFY(device->written().isEmpty());
    device->setTaking(65);
    QTRY_COMPARE_WITH_TIMEOUT(device->written(), (QList<QByteArray>{report(1), report(2)}), kPatienceMs);
    QVERIFY(manager().getConnected());

    // One that never takes anything has failed, and nobody who stops the thread waits for that.
    device->setTaking(kNothingYet);
    manager().DC_AddSendData(report(3));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
    QVERIFY(!manager().getConnected());
}

void HidHotplugTest::reportThatIsTakenInPartIsALoss()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    device->setTaking(64);
    manager().DC_AddSendData(report(1));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
    QVERIFY(device->written().isEmpty());
}

void HidHotplugTest::failedReadIsALossThoughTheDeviceStays()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    manager().createOrvikReceiveDataThread();
    device->hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE_WITH_TIMEOUT(device->openHandles(), 0, kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
}

void HidHotplugTest::deviceComesBackUnderAnotherNode()
{
    answerAsAPanel();
    auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    // Reports come from another thread: the device may be served before its opening is heard of.
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), QList<int>{0}, kPatienceMs);
    for (int round = 0; round < 3; ++round) {
        const QByteArray before = device->deviceFile();
        recorder().clear();
        device = bus().plug(); // the old one leaves after the new one has come
        QVERIFY(device->deviceFile() != before);
        QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{1, 0}), kPatienceMs);
        QVERIFY(isServed(*device));
    }
}

QUILLON_TEST_CORE(HidHotplugTest)
#include "tst_hid_hotplug.moc"
