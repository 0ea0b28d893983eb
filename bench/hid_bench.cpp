// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the HID library costs, on a mock device: round trips beside those of others on the same device, the
// time from a plug to its announcement beside that to the system's own, and what it takes while nothing
// happens.
#include "bench/Peer.h"
#include "bench/ProcessorTime.h"
#include "bench/Results.h"
#include "bench/SystemAnnouncements.h"
#include "tests/support/MockBus.h"
#include "tests/support/ProgramThreads.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QList>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

using namespace std::chrono_literals;
using HIDCommunicator::OrvikHIDManager;

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int kVendorId = 0x352F;
constexpr int kProductId = 0x000E;
constexpr int kRoundTripsEach = 50;

OrvikHIDManager &manager()
{
    return *OrvikHIDManager::instance();
}

/// The question for the device's mode.
QByteArray question()
{
    return QByteArray::fromHex("51c4090000040810"
                               "17ff")
        .leftJustified(65, '\0');
}

double us(Clock::duration time)
{
    return Microseconds(time).count();
}

/// Rung on one of the library's threads, by a slot called directly; another thread waits for it.
class Bell {
public:
    void ring()
    {
        const Clock::time_point now = Clock::now();
        const std::lock_guard lock(m_mutex);
        m_rung = m_rung.value_or(now);
        m_changed.notify_all();
    }
    void silence()
    {
        const std::lock_guard lock(m_mutex);
        m_rung.reset();
    }
    /// When it rang first since silence().
    Clock::time_point wait(const char *whatFor)
    {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, 5s, [&] { return m_rung.has_value(); }))
            giveUp(whatFor);
        return *m_rung;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Clock::time_point> m_rung;
};

void openThroughLibrary(const MockDevice &device)
{
    QElapsedTimer timer;
    timer.start();
    while (!manager().openHIDHandle(device.path(), kVendorId, kProductId, 0)) {
        if (timer.hasExpired(5000))
            giveUp("opening through the library");
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    manager().createOrvikSendDataThread();
    manager().createOrvikReceiveDataThread();
}

void measureLibrary(const MockDevice &device, Bell &reply, Samples &times)
{
    openThroughLibrary(device);
    for (int trip = 0; trip < kRoundTripsEach; ++trip) {
        reply.silence();
        const Clock::time_point asked = Clock::now();
        manager().DC_AddSendData(question());
        times.values.append(us(reply.wait("a reply through the library") - asked));
    }
    manager().disconnectDevice(0);
}

void measurePeer(const OtherWay &way, const MockDevice &device, Samples &times)
{
    const auto peer = way.open(device.deviceFile());
    if (!peer)
        giveUp("opening in another way");
    const QByteArray asked = question();
    for (int trip = 0; trip < kRoundTripsEach; ++trip) {
        const Clock::time_point start = Clock::now();
        if (!peer->ask(asked))
            giveUp("a reply in another way");
        times.values.append(us(Clock::now() - start));
    }
}

/// In turns, so that all meet the same machine. The first turn of each is a warm-up.
void compareRoundTrips(const Results &results, MockBus &bus)
{
    Bell reply;
    const auto heard = QObject::connect(
        &manager(), &OrvikHIDManager::blockReceiveData, &manager(), [&] { reply.ring(); },
        Qt::DirectConnection);
    const auto device = bus.plug();
    device->setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    const QList<OtherWay> ways = otherWays();
    Samples library;
    QList<Samples> peers(ways.size());
    for (int block = 0; block <= results.count(20, 1); ++block) {
        if (block == 1) {
            library = {};
            peers.fill({});
        }
        measureLibrary(*device, reply, library);
        for (qsizetype way = 0; way < ways.size(); ++way)
            measurePeer(ways.at(way), *device, peers[way]);
    }
    QObject::disconnect(heard);
    for (qsizetype way = 0; way < ways.size(); ++way)
        results.add({QStringLiteral("HID round trip"), QStringLiteral("us"), ways.at(way).wanted, library,
                     ways.at(way).name, peers.at(way)});
}

/// From before the system's event is sent to the list with the device in it, and to the event itself.
void measurePlugs(const Results &results, MockBus &bus)
{
    Bell announced;
    const auto heard = QObject::connect(
        &manager(), &OrvikHIDManager::deviceListChanged, &manager(),
        [&](const QStringList &paths) {
            if (!paths.isEmpty())
                announced.ring();
        },
        Qt::DirectConnection);
    Row row{QStringLiteral("plug to announcement"),
            QStringLiteral("us"),
            QString(),
            {},
            QStringLiteral("udev's event"),
            {}};
    SystemAnnouncements system;
    for (int plug = 0; plug < results.count(50, 3); ++plug) {
        announced.silence();
        const Clock::time_point start = Clock::now();
        system.expect();
        const auto device = bus.plug();
        row.ours.values.append(us(announced.wait("the announcement of a plug") - start));
        row.peers.values.append(us(system.heardAt() - start));
        device->unplug();
        std::this_thread::sleep_for(50ms); // scans that the unplug brings about
    }
    QObject::disconnect(heard);
    results.add(row);
}

qint64 sleeps()
{
    qint64 sum = 0;
    for (const int thread : ProgramThreads::all())
        sum += ProgramThreads::sleeps(thread);
    return sum;
}

void run(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

struct IdleCost {
    Samples processor; // ms a minute
    Samples wakeUps; // a second

    void measure(std::chrono::milliseconds time)
    {
        run(std::min<std::chrono::milliseconds>(1s, time));
        const double seconds = std::chrono::duration<double>(time).count();
        const double before = processorMilliseconds();
        const qint64 sleepsBefore = sleeps();
        run(time);
        processor.values.append((processorMilliseconds() - before) * 60 / seconds);
        wakeUps.values.append(double(sleeps() - sleepsBefore) / seconds);
    }
};

void measureIdle(const Results &results, MockBus &bus)
{
    const std::chrono::milliseconds time(results.count(15'000, 100));
    IdleCost watch;
    IdleCost open;
    for (int turn = 0; turn < results.count(2, 1); ++turn) {
        watch.measure(time);
        const auto device = bus.plug();
        openThroughLibrary(*device);
        open.measure(time);
        manager().disconnectDevice(0);
    }
    const QString peer = QStringLiteral("the bus watch alone");
    results.add({QStringLiteral("HID library with its device, idle: processor time"),
                 QStringLiteral("ms a minute"), QStringLiteral("20"), open.processor, peer, watch.processor});
    results.add({QStringLiteral("HID library with its device, idle: wake-ups"), QStringLiteral("a second"),
                 QStringLiteral("1.5"), open.wakeUps, peer, watch.wakeUps});
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Results results(QCoreApplication::arguments());
    MockBus bus;
    if (!bus.isShown())
        giveUp("to be started by umockdev-wrapper");
    manager().acquire();
    compareRoundTrips(results, bus);
    measurePlugs(results, bus);
    measureIdle(results, bus);
    manager().release();
    return 0;
}
