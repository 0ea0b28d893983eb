// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A cable that is pulled at random moments: no crash, no lost device, no thread or handle left. The same as
// tst_hid_stress, with hidraw and libudev underneath.
#include "MockBusTest.h"
#include "MockUdevd.h"

#include "tests/hid/ThisProcess.h"
#include "tests/support/ProgramThreads.h"
#include "tests/support/TestProgram.h"

#include <QDeadlineTimer>
#include <QtTest>

#include <atomic>
#include <memory>
#include <random>
#include <thread>

namespace {

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

struct Traffic {
    int questions; ///< asked at once
    int heard; ///< how many of them the device has heard when the cable is pulled
    int answers; ///< to each
};

/// What the library asks of a node that it has just opened.
constexpr unsigned kQuestions = 3;
/// How long the cable stays in at most, in microseconds: otherwise, and while the device is being opened.
constexpr unsigned kPause[] = {5000, 1500};

constexpr Traffic kTraffic[MomentCount]
    = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {1, 1, 0}, {40, 7, 1}, {1, 1, 60}, {0, 0, 0}};

/// A plug and a pull bring the library one event each. Of what it has not taken yet the kernel drops some
/// when it becomes too much; umockdev ends the program instead, where a socket holds ten messages.
constexpr int kEventsOfACycle = 2;

int threadsOfThisProgram()
{
    return int(ProgramThreads::all().size());
}

bool waitUntil(const std::function<bool()> &happened)
{
    const QDeadlineTimer patience(20000);
    while (!happened() && !patience.hasExpired())
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    return happened();
}

} // namespace

class HidReplugTest : public MockBusTest {
    Q_OBJECT

private Q_SLOTS:
    void cableIsPulledAtRandomMoments();

private:
    bool pullsTheCable(Moment moment, std::mt19937 &random);
};

/// One device from plug to unplug; whether it was found, and served until its moment had come.
bool HidReplugTest::pullsTheCable(Moment moment, std::mt19937 &random)
{
    const Traffic traffic = kTraffic[moment];
    // The bus may call the responder once more after it was taken back.
    const auto heard = std::make_shared<std::atomic<int>>(0);
    const auto identified = std::make_shared<std::atomic<int>>(0);
    const int lastIdentified = 1 + int(random() % kQuestions);
    const auto answerTime = std::chrono::microseconds(random() % 1000);
    const auto device = bus().plug({}, [&](MockDevice &unseen) {
        unseen.setAskedHook([identified, answerTime] {
            ++*identified;
            std::this_thread::sleep_for(answerTime);
        });
        unseen.setResponder([heard, traffic](const QByteArray &asked) {
            ++*heard;
            return QList<QByteArray>(traffic.answers, asked);
        });
    });
    bool served = true;
    if (moment == WhileOpening)
        served = waitUntil([&] { return *identified >= lastIdentified; });
    else if (moment != BeforeOpening)
        served = waitUntil([] { return manager().getConnected(); });
    for (int question = 0; question < traffic.questions; ++question)
        manager().DC_AddSendData(report(question));
    served = served && waitUntil([&] { return *heard >= traffic.heard; });
    if (moment != JustOpened)
        std::this_thread::sleep_for(std::chrono::microseconds(random() % kPause[moment == WhileOpening]));
    device->unplug();
    device->setResponder({});
    return served && waitUntil([] { return !manager().getConnected(); })
        && waitUntil([&] { return device->openHandles() == 0; });
}

void HidReplugTest::cableIsPulledAtRandomMoments()
{
    constexpr int kCycles = REPLUGS;
    manager().release();
    const int threads = settled(threadsOfThisProgram);
    const int deviceFiles = openDeviceFiles();
    manager().acquire();
    answerAsAPanel();

    QEventLoop loop;
    int served = 0;
    std::thread cable([&] {
        std::mt19937 random(1);
        const int taken = MockUdevd::eventsTaken();
        const auto atMostOneCycleIsUnread
            = [&] { return MockUdevd::eventsTaken() - taken >= (served - 1) * kEventsOfACycle; };
        while (served < kCycles && waitUntil(atMostOneCycleIsUnread)
               && pullsTheCable(Moment(random() % MomentCount), random))
            ++served;
        QCoreApplication::postEvent(&loop, new QEvent(QEvent::Quit));
    });
    loop.exec();
    cable.join();
    QCOMPARE(served, kCycles);

    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    device->unplug();
    manager().release();
    QTRY_COMPARE(device->openHandles(), 0);
    QTRY_COMPARE(threadsOfThisProgram(), threads);
    QTRY_COMPARE(openDeviceFiles(), deviceFiles + 1); // the last device's own
    manager().acquire();
}

QUILLON_TEST_CORE(HidReplugTest)
#include "tst_hid_replug.moc"
