// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What an open device costs while it has nothing to say, and that nobody has to wait for it either.
#include "MockBusTest.h"
#include "MockUdevd.h"

#include "tests/hid/ThisProcess.h"
#include "tests/support/ProgramThreads.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <algorithm>
#include <limits>

class HidIdleTest : public MockBusTest {
    Q_OBJECT

private Q_SLOTS:
    void threadsSleepUntilSomethingHappens();
    void stopsEndAPendingReadAtOnce_data();
    void stopsEndAPendingReadAtOnce();
    void receivingGoesOnAfterAStop();
    void scansAskNothingTwice();
};

/// The threads that are there now and were not \a before, once no more come.
static QList<int> threadsSince(const QList<int> &before)
{
    settled([] { return int(ProgramThreads::all().size()); });
    QList<int> threads = ProgramThreads::all();
    threads.removeIf([&](int thread) { return before.contains(thread); });
    return threads;
}

static QList<qint64> sleepsOf(const QList<int> &threads)
{
    QList<qint64> sleeps;
    for (const int thread : threads)
        sleeps.append(ProgramThreads::sleeps(thread));
    return sleeps;
}

void HidIdleTest::threadsSleepUntilSomethingHappens()
{
    constexpr unsigned long kIdleMs = 4000;
    constexpr int kScans = 2; // one every 3 s
    manager().release();
    const QList<int> before = threadsSince({});
    manager().acquire();
    const QList<int> watch = threadsSince(before);
    QCOMPARE(watch.size(), 1);
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    const QList<int> workers = threadsSince(before + watch);
    QCOMPARE(workers.size(), 2);

    // Without an event loop: nobody answers what the scans announce.
    const QList<qint64> workersBefore = sleepsOf(workers);
    const QList<qint64> watchBefore = sleepsOf(watch);
    QThread::msleep(kIdleMs);
    QCOMPARE(sleepsOf(workers), workersBefore);
    const qint64 wakeUps = sleepsOf(watch).first() - watchBefore.first();
    QVERIFY2(wakeUps <= qint64(2) * kScans, qPrintable(QString::number(wakeUps)));
}

using Stop = void (*)();

void HidIdleTest::stopsEndAPendingReadAtOnce_data()
{
    using HIDCommunicator::OrvikHIDManager;
    QTest::addColumn<Stop>("stop");
    QTest::newRow("receive thread closed") << Stop([] { manager().closeOrvikReceiveDataThread(); });
    QTest::newRow("device disconnected") << Stop([] { manager().disconnectDevice(0); });
    QTest::newRow("last release") << Stop([] { manager().release(), manager().acquire(); });
}

/// A thread that is not woken is left to itself after 80 ms. Most of several: a busy machine takes its time.
void HidIdleTest::stopsEndAPendingReadAtOnce()
{
    QFETCH(Stop, stop);
    constexpr int kRounds = 8;
    constexpr qint64 kAtOnceMs = 10;
    const auto device = bus().plug();
    int atOnce = 0;
    for (int round = 0; round < kRounds; ++round) {
        QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
        const qsizetype before = ProgramThreads::all().size();
        manager().createOrvikReceiveDataThread();
        QTRY_COMPARE(ProgramThreads::all().size(), before + 1);
        QThread::msleep(5); // and it waits by now
        QElapsedTimer timer;
        timer.start();
        stop();
        atOnce += timer.elapsed() < kAtOnceMs;
        QTRY_COMPARE(ProgramThreads::all().size(), before);
    }
    QVERIFY2(atOnce > kRounds / 2, qPrintable(QString::number(atOnce)));
}

void HidIdleTest::receivingGoesOnAfterAStop()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    // Once with a thread to be stopped and once without: an interruption that meets nobody harms nobody.
    for (int round = 0; round < 3; ++round) {
        manager().closeOrvikReceiveDataThread();
        manager().closeOrvikReceiveDataThread();
        startThreads();
        QVERIFY(isServed(*device));
    }
}

void HidIdleTest::scansAskNothingTwice()
{
    const auto device = bus().plug();
    const auto foreign = bus().plug({0x046D, 0x000E});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    // The scans that the plugs brought about go by first.
    recorder().clear();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 2, kPatienceMs);
    recorder().clear();
    const int asked = MockUdevd::questions();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 3, kPatienceMs);
    QCOMPARE(MockUdevd::questions(), asked);
    QCOMPARE(recorder().lists().last(), QStringList{device->path()});

    const auto other = bus().plug({0x352F, 0x001F});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path(), other->path()}), kPatienceMs);
    QVERIFY(MockUdevd::questions() > asked);
}

QUILLON_TEST_CORE(HidIdleTest)
#include "tst_hid_idle.moc"
