// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "Hang.h"
#include "ManagerTest.h"
#include "ThisProcess.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QtTest>

#include <array>
#include <atomic>
#include <limits>
#include <optional>
#include <utility>

namespace {

using HIDCommunicator::OrvikHIDManager;

QString devicePath()
{
    return ScriptedBus::pathFor(0x000E);
}

struct Call {
    const char *name;
    void (*make)(OrvikHIDManager &manager);
};

constexpr std::array kCalls{
    Call{"acquire", [](OrvikHIDManager &manager) { manager.acquire(); }},
    Call{"release", [](OrvikHIDManager &manager) { manager.release(); }},
    Call{"getOrvikHIDListPath",
         [](OrvikHIDManager &manager) {
             QStringList paths;
             QList<int> productIds;
             manager.getOrvikHIDListPath(paths, productIds);
         }},
    Call{"openHIDHandle",
         [](OrvikHIDManager &manager) { manager.openHIDHandle(devicePath(), 0x352F, 0x000E, 0); }},
    Call{"createOrvikSendDataThread", [](OrvikHIDManager &manager) { manager.createOrvikSendDataThread(); }},
    Call{"createOrvikReceiveDataThread",
         [](OrvikHIDManager &manager) { manager.createOrvikReceiveDataThread(); }},
    Call{"closeOrvikSendDataThread", [](OrvikHIDManager &manager) { manager.closeOrvikSendDataThread(); }},
    Call{"closeOrvikReceiveDataThread",
         [](OrvikHIDManager &manager) { manager.closeOrvikReceiveDataThread(); }},
    Call{"getConnected", [](OrvikHIDManager &manager) { manager.getConnected(); }},
    Call{"disconnectDevice", [](OrvikHIDManager &manager) { manager.disconnectDevice(0); }},
    Call{"DC_AddSendData",
         [](OrvikHIDManager &manager) { manager.DC_AddSendData(QByteArray::fromHex("51c409")); }},
};

/// How far a device has come when a call is made.
enum class Stage { NotAcquired, NoDevice, Attached, Open, Running };
constexpr std::array kStages{
    std::pair{"not acquired", Stage::NotAcquired}, std::pair{"no device", Stage::NoDevice},
    std::pair{"device attached", Stage::Attached}, std::pair{"device open", Stage::Open},
    std::pair{"threads running", Stage::Running}};

/// What keeps one of the library's threads busy when a call is made.
enum class Trouble { PendingRead, HangingWrite, HangingReceiver, HangingWatcher };
constexpr std::array kTroubles{std::pair{"a read is pending", Trouble::PendingRead},
                               std::pair{"a write hangs", Trouble::HangingWrite},
                               std::pair{"a slot hangs on the receive thread", Trouble::HangingReceiver},
                               std::pair{"a slot hangs on the bus watch", Trouble::HangingWatcher}};

} // namespace

/// Any call at any time: what else is going on may refuse it, but not be harmed by it.
class HidCallsTest : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void anyTwoCallsInAnyState_data();
    void anyTwoCallsInAnyState();
    void anyCallFromInsideASlot_data();
    void anyCallFromInsideASlot();
    void noCallIsSlow_data();
    void noCallIsSlow();
    void usersAreCounted();
    void lastReleaseLeavesNoThread();
    void restartFromInsideASlot();

private:
    void restore();
    std::optional<qint64> timeOf(const Call &call, Trouble trouble);
};

/// Whatever was called before: one user, a device, and a round trip.
void HidCallsTest::restore()
{
    manager().acquire();
    manager().disconnectDevice(0);
    bus().clear();
    bus().unplugAll();
    const QString path = bus().plug(kProductId);
    bus().setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    QVERIFY(QTest::qWaitFor([&] { return open(path); }));
    startThreads();
    recorder().clear();
    manager().DC_AddSendData(report(99));
    QVERIFY(QTest::qWaitFor([&] { return recorder().reports().contains(report(99).sliced(1)); }));
    for (int user = 0; user < 10; ++user)
        manager().release();
    QVERIFY(!manager().getConnected());
    QVERIFY(QTest::qWaitFor([&] { return bus().openConnections() == 0; }));
    manager().acquire();
}

void HidCallsTest::anyTwoCallsInAnyState_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<Stage>("stage");
    for (const auto &[name, stage] : kStages) {
        for (const Call &call : kCalls)
            QTest::addRow("%s, %s", call.name, name) << call << stage;
    }
}

void HidCallsTest::anyTwoCallsInAnyState()
{
    QFETCH(Call, call);
    QFETCH(Stage, stage);

    for (const Call &second : kCalls) {
        if (stage == Stage::NotAcquired)
            manager().release();
        if (stage >= Stage::Attached)
            bus().plug(kProductId);
        if (stage >= Stage::Open)
            QVERIFY(open(devicePath()));
        if (stage == Stage::Running)
            startThreads();

        call.make(manager());
        call.make(manager());
        second.make(manager());
        call.make(manager());
        restore();
        bus().unplugAll();
    }
}

enum class Signal { List, Status0, Status1, Report };

void HidCallsTest::anyCallFromInsideASlot_data()
{
    QTest::addColumn<Qt::ConnectionType>("connection");
    QTest::addColumn<Signal>("signal");
    QTest::addColumn<Call>("call");

    const std::array connections{std::pair{"direct", Qt::DirectConnection},
                                 std::pair{"queued", Qt::QueuedConnection}};
    const std::array emitted{std::pair{"deviceListChanged", Signal::List},
                             std::pair{"status 0", Signal::Status0}, std::pair{"status 1", Signal::Status1},
                             std::pair{"blockReceiveData", Signal::Report}};
    for (const auto &[how, connection] : connections) {
        for (const auto &[what, signal] : emitted) {
            for (const Call &call : kCalls)
                QTest::addRow("%s in a %s slot of %s", call.name, how, what) << connection << signal << call;
        }
    }
}

void HidCallsTest::anyCallFromInsideASlot()
{
    QFETCH(Qt::ConnectionType, connection);
    QFETCH(Signal, signal);
    QFETCH(Call, call);

    std::atomic<int> made{0};
    std::atomic<bool> returned{false};
    // Once: an acquire() in a slot of the scan that it brings about would go on for ever.
    const auto make = [&] {
        if (made++ > 0)
            return;
        call.make(manager());
        call.make(manager());
        returned = true;
    };
    Recorder::Hooks hooks;
    if (signal == Signal::List)
        hooks.onList = [&](const QStringList &) { make(); };
    hooks.onStatus = [&](int status) {
        if ((signal == Signal::Status0 && status == 0) || (signal == Signal::Status1 && status == 1))
            make();
    };
    if (signal == Signal::Report)
        hooks.onReport = [&](const QByteArray &) { make(); };
    const QString path = bus().plug(kProductId);
    const HookGuard guard(listen(connection, hooks));

    manager().openHIDHandle(path, kVendorId, kProductId, 0);
    startThreads();
    if (signal == Signal::Report)
        bus().queueReport(report(1));
    if (signal == Signal::Status1)
        bus().unplugAll();
    QVERIFY(QTest::qWaitFor([&] { return returned.load(); }));
    listen(Qt::QueuedConnection);
    restore();
}

void HidCallsTest::noCallIsSlow_data()
{
    QTest::addColumn<Trouble>("trouble");
    QTest::addColumn<Call>("call");
    for (const auto &[name, trouble] : kTroubles) {
        for (const Call &call : kCalls)
            QTest::addRow("%s while %s", call.name, name) << trouble << call;
    }
}

/// How long \a call keeps its caller while \a trouble lasts; nothing when the trouble could not be made.
std::optional<qint64> HidCallsTest::timeOf(const Call &call, Trouble trouble)
{
    Hang hang;
    Recorder::Hooks hooks;
    hooks.onReport = [&](const QByteArray &) { hang.passBy(); };
    hooks.onStatus = [&](int) { hang.passBy(); };
    const HookGuard guard(listen(Qt::DirectConnection, hooks));
    bus().setResponder([&](const QByteArray &) {
        hang.passBy();
        return QList<QByteArray>();
    });
    if (connectDevice().isEmpty() || !QTest::qWaitFor([] { return recorder().count(0) == 1; }))
        return std::nullopt;

    hang.arm();
    if (trouble == Trouble::HangingWrite)
        manager().DC_AddSendData(report(1));
    else if (trouble == Trouble::HangingReceiver)
        bus().queueReport(report(1));
    else if (trouble == Trouble::HangingWatcher)
        bus().unplugAll();
    else
        hang.disarm();
    if (!QTest::qWaitFor([&] { return hang.isAsExpected(); }))
        return std::nullopt;

    QElapsedTimer timer;
    timer.start();
    call.make(manager());
    const qint64 took = timer.elapsed();
    hang.disarm();
    listen(Qt::QueuedConnection);
    restore();
    return took;
}

void HidCallsTest::noCallIsSlow()
{
    QFETCH(Trouble, trouble);
    QFETCH(Call, call);

    // A busy machine may take its time to come back to us, but not every time.
    constexpr qint64 kLimitMs = 100;
    constexpr int kAttempts = 10;
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (int attempt = 0; attempt < kAttempts && shortest >= kLimitMs; ++attempt) {
        const auto took = timeOf(call, trouble);
        QVERIFY(took.has_value());
        shortest = qMin(shortest, *took);
    }
    QVERIFY2(shortest < kLimitMs, qPrintable(QString::number(shortest)));
}

void HidCallsTest::usersAreCounted()
{
    QVERIFY(!connectDevice().isEmpty());
    manager().acquire();
    manager().acquire();
    manager().release();
    manager().release();
    QVERIFY(manager().getConnected());
    QTRY_COMPARE(recorder().statuses(), QList<int>{0});

    manager().release();
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(bus().openConnections(), 0);
    QVERIFY(!open(devicePath()));
    for (int more = 0; more < 3; ++more)
        manager().release();

    // One acquire is enough again, and one release ends it.
    manager().acquire();
    QVERIFY(open(devicePath()));
    manager().release();
    QVERIFY(!manager().getConnected());
    QTest::qWait(50);
    QCOMPARE(recorder().count(1), 0);
}

void HidCallsTest::lastReleaseLeavesNoThread()
{
    manager().release();
    const int before = settled(threadsOfThisProcess);
    for (int round = 0; round < 20; ++round) {
        manager().acquire();
        QVERIFY(open(bus().plug(kProductId)));
        startThreads();
        QTRY_COMPARE(threadsOfThisProcess(), before + 3);
        manager().release();
        // The system lists a thread for a moment longer than it takes to be joined.
        QTRY_COMPARE(threadsOfThisProcess(), before);
        bus().unplugAll();
    }
}

void HidCallsTest::restartFromInsideASlot()
{
    std::atomic<int> restarts{0};
    Recorder::Hooks hooks;
    hooks.onList = [&](const QStringList &) {
        if (restarts++ >= 5)
            return;
        manager().release();
        manager().acquire();
    };
    const HookGuard guard(listen(Qt::DirectConnection, hooks));
    QTRY_VERIFY(restarts >= 6);
    listen(Qt::QueuedConnection);
    restore();
}

QUILLON_TEST_CORE(HidCallsTest)
#include "tst_hid_calls.moc"
