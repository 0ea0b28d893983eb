// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/SimulatedBus.h"
#include "rig/SimulatedDevice.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QTest>

#include <thread>

using namespace rig;
using namespace std::chrono_literals;
using HIDCommunicator::HidConnection;
using HIDCommunicator::HidTransport;

namespace {

constexpr int kPatience = 60000; // of the sped-up clock

QByteArray modeQuery()
{
    return QByteArray::fromHex("51C4090000040810 17FF").leftJustified(65, '\0');
}

} // namespace

class RigBusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theBusShowsWhatIsPlugged();
    void otherVendorsSeeNothing();
    void openingWhatIsNotThereFails_data();
    void openingWhatIsNotThereFails();
    void aReportIsAnswered();
    void answersComeInOrder();
    void readingTimesOut();
    void aPendingReadEndsWhenTheCableIsPulled();
    void anAnswerReceivedBeforeThePullIsStillRead();
    void writingToADeviceThatHasLeftFails();
    void theOtgInterfaceKeepsSilent();
    void hotplugWakesTheWatch();
    void theWatchRemembersWhatItMissed();
    void interruptingEndsTheWait();
    void anEarlyInterruptionEndsTheNextWait();
    void anInterruptionHidesNoPlug();
    void aBusWithoutItsDeviceIsEmpty();

private:
    QString plug(Chip port);

    Journal m_journal;
    FaultBoard m_faults;
    RigThread m_thread;
    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<HidTransport> m_bus;
};

void RigBusTest::init()
{
    m_device = std::make_unique<SimulatedDevice>(m_thread, m_faults, m_journal);
    m_bus = makeSimulatedBus(*m_device);
}

void RigBusTest::cleanup()
{
    m_bus.reset();
    m_device.reset();
    m_faults.clearAll();
}

// The path of the interface that appears.
QString RigBusTest::plug(Chip port)
{
    QString path;
    const auto found = [&] {
        for (const BusInterface &face : m_device->interfaces())
            path = face.chip == port ? face.path : path;
        return !path.isEmpty();
    };
    m_device->plug(port);
    return QTest::qWaitFor(found, kPatience) ? path : QStringLiteral("not found in time");
}

void RigBusTest::theBusShowsWhatIsPlugged()
{
    QVERIFY(m_bus->enumerate(kVendorId)->isEmpty());
    plug(Chip::Otg);
    plug(Chip::Pc);
    const auto devices = m_bus->enumerate(kVendorId).value();
    QCOMPARE(devices.size(), 2);
    QCOMPARE(devices.at(0).productId, 0x000E);
    QCOMPARE(devices.at(0).vendorId, 0x352F);
    QVERIFY(devices.at(0).path.contains(QStringLiteral("vid_352f&pid_000e")));
    QCOMPARE(devices.at(1).productId, 0x001F);
    m_device->unplug(Chip::Otg);
    QCOMPARE(m_bus->enumerate(kVendorId)->size(), 1);
}

void RigBusTest::otherVendorsSeeNothing()
{
    plug(Chip::Pc);
    QVERIFY(m_bus->enumerate(0x1234)->isEmpty());
}

void RigBusTest::openingWhatIsNotThereFails_data()
{
    QTest::addColumn<bool>("refused");
    QTest::addColumn<bool>("pulled");
    QTest::newRow("refused by the system") << true << false;
    QTest::newRow("pulled meanwhile") << false << true;
}

void RigBusTest::openingWhatIsNotThereFails()
{
    const QString path = plug(Chip::Pc);
    QVERIFY(m_bus->open(path));
    QFETCH(bool, refused);
    QFETCH(bool, pulled);
    if (refused)
        m_faults.arm(Fault::DeviceRefusesOpen);
    if (pulled)
        m_device->unplug(Chip::Pc);
    QVERIFY(!m_bus->open(path));
    QVERIFY(!m_bus->open(QStringLiteral("elsewhere#vid_352f&pid_000e")));
}

void RigBusTest::aReportIsAnswered()
{
    const auto connection = m_bus->open(plug(Chip::Pc));
    QVERIFY(connection->write(modeQuery()));
    QByteArray reply;
    QCOMPARE(connection->read(reply, 1000ms), HidConnection::ReadResult::Report);
    QCOMPARE(reply.size(), 65);
    QCOMPARE(reply.first(12).toHex(), QByteArray("51c40b000004081000001 5ff").replace(" ", ""));
}

void RigBusTest::answersComeInOrder()
{
    const auto connection = m_bus->open(plug(Chip::Pc));
    const QByteArray pcRead = QByteArray::fromHex("51C40B0000060B0003001DFF").leftJustified(65, '\0');
    QVERIFY(connection->write(pcRead));
    QVERIFY(connection->write(modeQuery()));
    QByteArray reply;
    QCOMPARE(connection->read(reply, 1000ms), HidConnection::ReadResult::Report);
    QCOMPARE(reply.at(5), char(6));
    QCOMPARE(connection->read(reply, 1000ms), HidConnection::ReadResult::Report);
    QCOMPARE(reply.at(5), char(4));
}

void RigBusTest::readingTimesOut()
{
    const auto connection = m_bus->open(plug(Chip::Pc));
    QByteArray reply;
    QElapsedTimer time;
    time.start();
    QCOMPARE(connection->read(reply, 2000ms), HidConnection::ReadResult::Timeout);
    QVERIFY2(time.elapsed() >= 1900, qPrintable(QString::number(time.elapsed())));
    QCOMPARE(connection->read(reply, 0ms), HidConnection::ReadResult::Timeout);
}

void RigBusTest::aPendingReadEndsWhenTheCableIsPulled()
{
    const auto connection = m_bus->open(plug(Chip::Pc));
    HidConnection::ReadResult result = HidConnection::ReadResult::Report;
    std::thread reader([&] {
        QByteArray reply;
        result = connection->read(reply, std::chrono::hours(1));
    });
    m_device->unplug(Chip::Pc);
    reader.join();
    QCOMPARE(result, HidConnection::ReadResult::Gone);
}

void RigBusTest::anAnswerReceivedBeforeThePullIsStillRead()
{
    const auto connection = m_bus->open(plug(Chip::Pc));
    QVERIFY(connection->write(modeQuery()));
    m_device->unplug(Chip::Pc);
    QByteArray reply;
    QCOMPARE(connection->read(reply, 1000ms), HidConnection::ReadResult::Report);
    QCOMPARE(connection->read(reply, 1000ms), HidConnection::ReadResult::Gone);
}

void RigBusTest::writingToADeviceThatHasLeftFails()
{
    const auto connection = m_bus->open(plug(Chip::Pc));
    m_device->unplug(Chip::Pc);
    QVERIFY(!connection->write(modeQuery()));
    plug(Chip::Pc);
    QVERIFY(!connection->write(modeQuery()));
}

void RigBusTest::theOtgInterfaceKeepsSilent()
{
    const auto connection = m_bus->open(plug(Chip::Otg));
    QVERIFY(connection->write(modeQuery()));
    QByteArray reply;
    QCOMPARE(connection->read(reply, 100ms), HidConnection::ReadResult::Timeout);
}

void RigBusTest::hotplugWakesTheWatch()
{
    QVERIFY(!m_bus->waitForHotplug(100ms));
    m_device->plug(Chip::Pc);
    QVERIFY(m_bus->waitForHotplug(std::chrono::hours(1)));
    QCOMPARE(m_bus->enumerate(kVendorId)->size(), 1);
    m_device->unplug(Chip::Pc);
    QVERIFY(m_bus->waitForHotplug(std::chrono::hours(1)));
    QVERIFY(m_bus->enumerate(kVendorId)->isEmpty());
}

void RigBusTest::theWatchRemembersWhatItMissed()
{
    plug(Chip::Pc);
    m_device->unplug(Chip::Pc);
    QVERIFY(m_bus->waitForHotplug(std::chrono::hours(1)));
    QVERIFY(!m_bus->waitForHotplug(100ms));
}

void RigBusTest::interruptingEndsTheWait()
{
    bool hotplugged = true;
    std::thread watch([&] { hotplugged = m_bus->waitForHotplug(std::chrono::hours(1)); });
    m_bus->interruptHotplugWait();
    watch.join();
    QVERIFY(!hotplugged);
}

void RigBusTest::anEarlyInterruptionEndsTheNextWait()
{
    m_bus->interruptHotplugWait();
    QVERIFY(!m_bus->waitForHotplug(std::chrono::hours(1)));
    m_device->plug(Chip::Pc);
    QVERIFY(m_bus->waitForHotplug(std::chrono::hours(1)));
}

void RigBusTest::anInterruptionHidesNoPlug()
{
    plug(Chip::Pc);
    m_bus->interruptHotplugWait();
    QVERIFY(!m_bus->waitForHotplug(0ms));
    // The device is on the bus a moment before that is announced.
    QVERIFY(m_bus->waitForHotplug(std::chrono::hours(1)));
    QVERIFY(!m_bus->waitForHotplug(0ms));
}

void RigBusTest::aBusWithoutItsDeviceIsEmpty()
{
    const QString path = plug(Chip::Pc);
    const auto connection = m_bus->open(path);
    m_device.reset();
    QVERIFY(m_bus->enumerate(kVendorId)->isEmpty());
    QVERIFY(!m_bus->open(path));
    QVERIFY(!connection->write(modeQuery()));
    QByteArray reply;
    QCOMPARE(connection->read(reply, 1000ms), HidConnection::ReadResult::Gone);
}

QUILLON_TEST_CORE(RigBusTest)
#include "tst_rig_bus.moc"
