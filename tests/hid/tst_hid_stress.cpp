// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What must hold however the device and the callers behave: no crash, no lost device, no thread or handle
// left.
#include "ManagerTest.h"
#include "ThisProcess.h"

#include "tests/support/LogCapture.h"
#include "tests/support/TestProgram.h"

#include <QDeadlineTimer>
#include <QtTest>

#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {

/// The moments of a connection at which a cable is pulled.
enum Moment {
    BeforeOpening,
    WhileOpening,
    JustOpened,
    BeforeReply,
    InBurstOut,
    InBurstIn,
    WhileIdle,
    MomentCount
};

} // namespace

class HidStressTest : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void deviceLeavesAtAnyMoment_data();
    void deviceLeavesAtAnyMoment();
    void severalThreadsCallEverything();

private:
    static void answerAsAPanel();
    static bool comesToServe();
    static bool pullsTheCable(Moment moment, std::mt19937 &random);
    static void leave();
    static void leaveAfter(int reports);

    static inline std::atomic<bool> s_left{false}; ///< the device left at its moment
    static inline std::atomic<int> s_questions{
        1}; ///< what the panel asks at once when it has opened the device
    static inline std::atomic<int> s_hearsBeforeLeaving{
        0}; ///< how many replies; 0: the panel does not pull the cable
};

void HidStressTest::leave()
{
    bus().unplugAll();
    s_left = true;
}

/// Opens what it finds, asks, and closes the threads of what has gone.
void HidStressTest::answerAsAPanel()
{
    Recorder::Hooks panel;
    panel.onList = [](const QStringList &paths) {
        if (paths.isEmpty() || manager().getConnected() || !open(paths.last()))
            return;
        startThreads();
        for (int question = 0; question < s_questions; ++question)
            manager().DC_AddSendData(report(char(question)));
    };
    panel.onStatus = &Recorder::closeThreadsOfLostDevice;
    panel.onReport = [](const QByteArray &) {
        if (s_hearsBeforeLeaving > 0 && --s_hearsBeforeLeaving == 0)
            leave();
    };
    listen(Qt::QueuedConnection, panel);
}

/// Whether a device that is plugged in now ends up open and answers.
bool HidStressTest::comesToServe()
{
    bus().unplugAll();
    bus().clear();
    bus().setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    bus().plug(kProductId);
    const QByteArray asked = report(77);
    recorder().clear();
    return QTest::qWaitFor(
        [&] {
            if (manager().getConnected())
                manager().DC_AddSendData(asked);
            return recorder().reports().contains(asked.sliced(1));
        },
        20000);
}

/// One device from plug to unplug; whether it was found, and served until its moment had come.
bool HidStressTest::pullsTheCable(Moment moment, std::mt19937 &random)
{
    const auto pause
        = [&](unsigned limit) { std::this_thread::sleep_for(std::chrono::microseconds(random() % limit)); };
    bus().clear();
    s_left = false;
    s_questions = moment == InBurstOut ? 40 : 1;
    s_hearsBeforeLeaving = moment == InBurstIn ? 1 + int(random() % 30) : 0;
    const auto questionsLeft
        = std::make_shared<std::atomic<int>>(moment == InBurstOut ? 1 + int(random() % 30) : 1);
    bus().setOpenHooks(moment == WhileOpening ? leave : nullptr, moment == JustOpened ? leave : nullptr);
    bus().setResponder([moment, questionsLeft](const QByteArray &asked) {
        if ((moment == BeforeReply || moment == InBurstOut) && --*questionsLeft == 0)
            leave();
        if (moment == WhileIdle)
            s_left = true;
        return QList<QByteArray>(moment == InBurstIn ? 50 : 1, asked);
    });

    bus().plug(kProductId, int(random() % 3));
    pause(1000);
    if (moment != BeforeOpening) {
        const QDeadlineTimer patience(20000);
        while (!s_left && !patience.hasExpired())
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        pause(1000);
    }
    bus().unplugAll();
    pause(1000);
    return s_left || moment == BeforeOpening;
}

void HidStressTest::deviceLeavesAtAnyMoment_data()
{
    QTest::addColumn<unsigned>("seed");
    for (const unsigned seed : {1U, 2U, 3U, 4U})
        QTest::addRow("seed %u", seed) << seed;
}

void HidStressTest::deviceLeavesAtAnyMoment()
{
    QFETCH(unsigned, seed);

    constexpr int kCycles = 250;
    manager().release();
    const int threads = settled(threadsOfThisProcess);
    const int descriptors = descriptorsOfThisProcess();
    manager().acquire();
    answerAsAPanel();
    const LogCapture log;

    QEventLoop loop;
    int served = 0;
    std::thread cable([&] {
        std::mt19937 random(seed);
        while (served < kCycles && pullsTheCable(Moment(random() % MomentCount), random))
            ++served;
        QCoreApplication::postEvent(&loop, new QEvent(QEvent::Quit));
    });
    loop.exec();
    cable.join();
    QCOMPARE(served, kCycles);
    QVERIFY(comesToServe());
    QCOMPARE(bus().openConnections(), 1);

    manager().release();
    QTRY_COMPARE(bus().openConnections(), 0);
    // What was asked of the devices that left is still queued, and that is all there is to complain of.
    QCOMPARE(log.lines().count(QStringLiteral("[HID] send queue full, oldest report dropped")),
             log.lines().size());
    QTRY_COMPARE(threadsOfThisProcess(), threads);
    QCOMPARE(descriptorsOfThisProcess(), descriptors);
    manager().acquire();
}

void HidStressTest::severalThreadsCallEverything()
{
    using Call = void (*)();
    static constexpr std::array<Call, 11> calls{
        [] { manager().acquire(); },
        [] { manager().release(); },
        [] {
            QStringList paths;
            QList<int> productIds;
            manager().getOrvikHIDListPath(paths, productIds);
        },
        [] { open(ScriptedBus::pathFor(kProductId)); },
        [] { manager().createOrvikSendDataThread(); },
        [] { manager().createOrvikReceiveDataThread(); },
        [] { manager().closeOrvikSendDataThread(); },
        [] { manager().closeOrvikReceiveDataThread(); },
        [] { manager().disconnectDevice(0); },
        [] { manager().DC_AddSendData(report(3)); },
        [] { bus().unplugAll(), bus().plug(kProductId); },
    };

    constexpr int kThreads = 4;
    constexpr int kCallsEach = 400;
    bus().setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    std::atomic<int> running{kThreads};
    std::vector<std::thread> callers;
    callers.reserve(kThreads);
    for (unsigned caller = 0; caller < kThreads; ++caller) {
        callers.emplace_back([caller, &running] {
            std::mt19937 random(caller);
            for (int i = 0; i < kCallsEach; ++i)
                calls.at(random() % calls.size())();
            --running;
        });
    }
    const bool inTime = QTest::qWaitFor([&] { return running == 0; }, 60000);
    for (std::thread &caller : callers)
        caller.join();
    QVERIFY(inTime);

    for (int user = 0; user < kThreads * kCallsEach; ++user)
        manager().release();
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(bus().openConnections(), 0);
    manager().acquire();
    answerAsAPanel();
    QVERIFY(comesToServe());
}

QUILLON_TEST_CORE(HidStressTest)
#include "tst_hid_stress.moc"
