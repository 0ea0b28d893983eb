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

} // namespace

/// Any call at any time: what else is going on may refuse it, but not be harmed by it.
class TestHidCalls : public ManagerTest {
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
    std::optional<qint64> timeOf(const Call &call, const QString &trouble);
};

/// Whatever was called before: one user, a device, and a round trip.
void TestHidCalls::restore()
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

void TestHidCalls::anyTwoCallsInAnyState_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("state");
    for (const char *state :
         {"not acquired", "no device", "device attached", "device open", "threads running"}) {
        for (int call = 0; call < int(kCalls.size()); ++call)
            QTest::addRow("%s, %s", kCalls.at(call).name, state) << call << QString::fromLatin1(state);
    }
}

void TestHidCalls::anyTwoCallsInAnyState()
{
    QFETCH(int, call);
    QFETCH(QString, state);

    for (const Call &second : kCalls) {
        if (state == QLatin1String("not acquired"))
            manager().release();
        else if (state != QLatin1String("no device"))
            bus().plug(kProductId);
        if (state == QLatin1String("device open") || state == QLatin1String("threads running"))
            QVERIFY(open(devicePath()));
        if (state == QLatin1String("threads running"))
            startThreads();

        kCalls.at(call).make(manager());
        kCalls.at(call).make(manager());
        second.make(manager());
        kCalls.at(call).make(manager());
        restore();
        bus().unplugAll();
    }
}

enum class Signal { List, Status0, Status1, Report };

void TestHidCalls::anyCallFromInsideASlot_data()
{
    QTest::addColumn<Qt::ConnectionType>("connection");
    QTest::addColumn<Signal>("signal");
    QTest::addColumn<int>("call");

    const std::array connections{std::pair{"direct", Qt::DirectConnection},
                                 std::pair{"queued", Qt::QueuedConnection}};
    const std::array emitted{std::pair{"deviceListChanged", Signal::List},
                             std::pair{"status 0", Signal::Status0}, std::pair{"status 1", Signal::Status1},
                             std::pair{"blockReceiveData", Signal::Report}};
    for (const auto &[how, connection] : connections) {
        for (const auto &[what, signal] : emitted) {
            for (int call = 0; call < int(kCalls.size()); ++call) {
                QTest::addRow("%s in a %s slot of %s", kCalls.at(call).name, how, what)
                    << connection << signal << call;
            }
        }
    }
}

void TestHidCalls::anyCallFromInsideASlot()
{
    QFETCH(Qt::ConnectionType, connection);
    QFETCH(Signal, signal);
    QFETCH(int, call);

    std::atomic<int> made{0};
    std::atomic<bool> returned{false};
    // Once: an acquire() in a slot of the scan that it brings about would go on for ever.
    const auto make = [&] {
        if (made++ > 0)
            return;
        kCalls.at(call).make(manager());
        kCalls.at(call).make(manager());
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

void TestHidCalls::noCallIsSlow_data()
{
    QTest::addColumn<QString>("trouble");
    QTest::addColumn<int>("call");
    for (const char *trouble : {"a read is pending", "a write hangs", "a slot hangs on the receive thread",
                                "a slot hangs on the bus watch"}) {
        for (int call = 0; call < int(kCalls.size()); ++call)
            QTest::addRow("%s while %s", kCalls.at(call).name, trouble)
                << QString::fromLatin1(trouble) << call;
    }
}

/// How long \a call keeps its caller while \a trouble lasts; nothing when the trouble could not be made.
std::optional<qint64> TestHidCalls::timeOf(const Call &call, const QString &trouble)
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
    if (trouble == QLatin1String("a write hangs"))
        manager().DC_AddSendData(report(1));
    else if (trouble == QLatin1String("a slot hangs on the receive thread"))
        bus().queueReport(report(1));
    else if (trouble == QLatin1String("a slot hangs on the bus watch"))
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

void TestHidCalls::noCallIsSlow()
{
    QFETCH(QString, trouble);
    QFETCH(int, call);

    // A busy machine may take its time to come back to us, but not every time.
    constexpr qint64 kLimitMs = 100;
    constexpr int kAttempts = 10;
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (int attempt = 0; attempt < kAttempts && shortest >= kLimitMs; ++attempt) {
        const auto took = timeOf(kCalls.at(call), trouble);
        QVERIFY(took.has_value());
        shortest = qMin(shortest, *took);
    }
    QVERIFY2(shortest < kLimitMs, qPrintable(QString::number(shortest)));
}

void TestHidCalls::usersAreCounted()
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

void TestHidCalls::lastReleaseLeavesNoThread()
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

void TestHidCalls::restartFromInsideASlot()
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

QUILLON_TEST_CORE(TestHidCalls)
#include "tst_hid_calls.moc"
