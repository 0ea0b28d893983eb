// What must hold however the device and the callers behave: no crash, no lost device, no thread or handle
// left.
#include "ManagerTest.h"

#include <QtTest>

#include <array>
#include <atomic>
#include <random>
#include <thread>
#include <vector>

class TestHidStress : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void deviceComesAndGoesAtRandomMoments_data();
    void deviceComesAndGoesAtRandomMoments();
    void severalThreadsCallEverything();

private:
    static void answerAsAPanel();
    static bool comesToServe(int productId);
};

/// Opens what it finds, asks, and closes the threads of what has gone.
void TestHidStress::answerAsAPanel()
{
    Recorder::Hooks panel;
    panel.onList = [](const QStringList &paths) {
        if (paths.isEmpty() || manager().getConnected() || !open(paths.last()))
            return;
        startThreads();
        manager().DC_AddSendData(report(1));
    };
    panel.onStatus = [](int status) {
        if (status != 1)
            return;
        manager().closeOrvikSendDataThread();
        manager().closeOrvikReceiveDataThread();
    };
    panel.onReport = [](const QByteArray &) { manager().DC_AddSendData(report(2)); };
    listen(Qt::QueuedConnection, panel);
}

/// Whether the device that is attached now ends up open and answers.
bool TestHidStress::comesToServe(int productId)
{
    bus().unplugAll();
    bus().setOpenHooks({});
    bus().setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    bus().plug(productId);
    const QByteArray asked = report(77);
    recorder().clear();
    return QTest::qWaitFor(
        [&] {
            if (manager().getConnected())
                manager().DC_AddSendData(asked);
            return recorder().reports().contains(asked.sliced(1));
        },
        10000);
}

void TestHidStress::deviceComesAndGoesAtRandomMoments_data()
{
    QTest::addColumn<unsigned>("seed");
    for (const unsigned seed : {1U, 2U, 3U, 4U})
        QTest::addRow("seed %u", seed) << seed;
}

void TestHidStress::deviceComesAndGoesAtRandomMoments()
{
    QFETCH(unsigned, seed);

    constexpr int kCycles = 250;
    answerAsAPanel();
    QEventLoop loop;
    std::thread cable([&] {
        std::mt19937 random(seed);
        const auto below = [&](unsigned limit) { return random() % limit; };
        for (int cycle = 0; cycle < kCycles; ++cycle) {
            const unsigned leavesAt = below(5);
            if (leavesAt == 0)
                bus().setOpenHooks([] { bus().unplugAll(); });
            else if (leavesAt == 1)
                bus().setOpenHooks({}, [] { bus().unplugAll(); });
            else
                bus().setOpenHooks({});
            bus().setResponder([leavesAt](const QByteArray &asked) {
                if (leavesAt == 2)
                    bus().unplugAll();
                return QList<QByteArray>(leavesAt == 3 ? 50 : 1, asked);
            });
            bus().plug(kProductId, int(below(3)));
            std::this_thread::sleep_for(std::chrono::microseconds(below(4000)));
            bus().unplugAll();
            std::this_thread::sleep_for(std::chrono::microseconds(below(1000)));
        }
        QCoreApplication::postEvent(&loop, new QEvent(QEvent::Quit));
    });
    loop.exec();
    cable.join();
    // A cable that was never caught in the act would prove nothing.
    QVERIFY2(bus().opened().size() > kCycles / 4, qPrintable(QString::number(bus().opened().size())));
    QVERIFY(comesToServe(kProductId));
    QVERIFY(bus().openConnections() == 1);
}

void TestHidStress::severalThreadsCallEverything()
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
    QVERIFY(comesToServe(kProductId));
}

QTEST_GUILESS_MAIN(TestHidStress)
#include "tst_hid_stress.moc"
