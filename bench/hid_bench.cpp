// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the HID library costs, on a mock device: round trips beside hidapi's own on the same device, the time
// from a plug to its announcement, and the processor's time and the wake-ups while nothing happens.
#include "bench/Peer.h"
#include "tests/support/MockBus.h"
#include "tests/support/ProgramThreads.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using HIDCommunicator::OrvikHIDManager;

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int kVendorId = 0x352F;
constexpr int kProductId = 0x000E;
constexpr int kBlocks = 20;
constexpr int kRoundTripsEach = 50;
constexpr int kPlugs = 50;
constexpr std::chrono::seconds kIdle{30};

OrvikHIDManager &manager()
{
    return *OrvikHIDManager::instance();
}

[[noreturn]] void giveUp(const char *what)
{
    std::fprintf(stderr, "hid_bench: given up: %s\n", what);
    std::exit(1);
}

/// The question for the device's mode.
QByteArray question()
{
    return QByteArray::fromHex("51c4090000040810"
                               "17ff")
        .leftJustified(65, '\0');
}

struct Times {
    std::vector<double> us;

    void add(Clock::duration time) { us.push_back(Microseconds(time).count()); }
    double percentile(int percent)
    {
        std::sort(us.begin(), us.end());
        return us.at((us.size() - 1) * std::size_t(percent) / 100);
    }
    double median() { return percentile(50); }
    double worst() { return percentile(100); }
};

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

void measureLibrary(const MockDevice &device, Bell &reply, Times &times)
{
    openThroughLibrary(device);
    for (int trip = 0; trip < kRoundTripsEach; ++trip) {
        reply.silence();
        const Clock::time_point asked = Clock::now();
        manager().DC_AddSendData(question());
        times.add(reply.wait("a reply through the library") - asked);
    }
    manager().disconnectDevice(0);
}

void measurePeer(const MockDevice &device, Times &times)
{
    const auto peer = openPeer(device.deviceFile());
    if (!peer)
        giveUp("opening through hidapi");
    const QByteArray asked = question();
    for (int trip = 0; trip < kRoundTripsEach; ++trip) {
        const Clock::time_point start = Clock::now();
        if (!peer->ask(asked))
            giveUp("a reply through hidapi");
        times.add(Clock::now() - start);
    }
}

/// In turns, so that both meet the same machine. The first turn of each is a warm-up.
void compareRoundTrips(MockBus &bus)
{
    Bell reply;
    const auto heard = QObject::connect(
        &manager(), &OrvikHIDManager::blockReceiveData, &manager(), [&] { reply.ring(); },
        Qt::DirectConnection);
    const auto device = bus.plug();
    device->setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    Times library;
    Times peer;
    for (int block = 0; block < kBlocks; ++block) {
        measureLibrary(*device, reply, library);
        if (hasPeer())
            measurePeer(*device, peer);
        if (block == 0)
            library.us.clear(), peer.us.clear();
    }
    QObject::disconnect(heard);
    std::printf("round trip, library      median %8.1f us   90%% below %8.1f us\n", library.median(),
                library.percentile(90));
    if (!hasPeer()) {
        std::printf("no hidapi to compare it with\n");
        return;
    }
    std::printf("round trip, hidapi       median %8.1f us   90%% below %8.1f us\n", peer.median(),
                peer.percentile(90));
    std::printf("ratio of the medians     %.2f\n", library.median() / peer.median());
}

/// From before the system's event is sent to the list with the device in it.
void measurePlugs(MockBus &bus)
{
    Bell announced;
    const auto heard = QObject::connect(
        &manager(), &OrvikHIDManager::deviceListChanged, &manager(),
        [&](const QStringList &paths) {
            if (!paths.isEmpty())
                announced.ring();
        },
        Qt::DirectConnection);
    Times times;
    for (int plug = 0; plug < kPlugs; ++plug) {
        announced.silence();
        const Clock::time_point start = Clock::now();
        const auto device = bus.plug();
        times.add(announced.wait("the announcement of a plug") - start);
        device->unplug();
        std::this_thread::sleep_for(50ms); // scans that the unplug brings about
    }
    QObject::disconnect(heard);
    std::printf("plug to announcement     median %8.2f ms   worst of %d %.2f ms\n", times.median() / 1000,
                kPlugs, times.worst() / 1000);
}

double processorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

qint64 sleeps()
{
    qint64 sum = 0;
    for (const int thread : ProgramThreads::all())
        sum += ProgramThreads::sleeps(thread);
    return sum;
}

void measureIdle(MockBus &bus)
{
    const auto device = bus.plug();
    openThroughLibrary(*device);
    QEventLoop loop;
    QTimer::singleShot(1000, &loop, &QEventLoop::quit);
    loop.exec();
    const double before = processorMilliseconds();
    const qint64 sleepsBefore = sleeps();
    QTimer::singleShot(kIdle, &loop, &QEventLoop::quit);
    loop.exec();
    const double spent = processorMilliseconds() - before;
    const qint64 wakeUps = sleeps() - sleepsBefore;
    std::printf("idle, device open        %8.1f ms of processor time a minute, %.2f wake-ups a second\n",
                spent * 60 / double(kIdle.count()), double(wakeUps) / double(kIdle.count()));
    manager().disconnectDevice(0);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    MockBus bus;
    if (!bus.isShown())
        giveUp("to be started by umockdev-wrapper");
    manager().acquire();
    compareRoundTrips(bus);
    measurePlugs(bus);
    measureIdle(bus);
    manager().release();
    return 0;
}
