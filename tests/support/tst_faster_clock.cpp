// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"

#include <QTest>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace std::chrono_literals;
using std::chrono::microseconds;

namespace {
using Wait = std::function<int(int milliseconds)>;

constexpr int kSpeed = 10;

/// The time of the machine, asked of the kernel: no other is left on a faster clock.
microseconds realTime()
{
    timespec now{};
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
    return std::chrono::duration_cast<microseconds>(std::chrono::seconds(now.tv_sec)
                                                    + std::chrono::nanoseconds(now.tv_nsec));
}
} // namespace

/// What faketime makes of the waits of an event loop, with finer_waits beside it.
class FasterClockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void waitsAreShorterToTheMicrosecond_data();
    void waitsAreShorterToTheMicrosecond();
};

void FasterClockTest::waitsAreShorterToTheMicrosecond_data()
{
    const Wait byPoll = [](int milliseconds) { return poll(nullptr, 0, milliseconds); };
    const Wait byPpoll = [](int milliseconds) {
        const timespec time{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
        return ppoll(nullptr, 0, &time, nullptr);
    };
    QTest::addColumn<Wait>("wait");
    QTest::addColumn<int>("time");
    for (const int time : {0, 1, 9, 15, 400, 2000}) {
        QTest::addRow("poll, %d ms", time) << byPoll << time;
        QTest::addRow("ppoll, %d ms", time) << byPpoll << time;
    }
}

void FasterClockTest::waitsAreShorterToTheMicrosecond()
{
    QFETCH(Wait, wait);
    QFETCH(int, time);
    const microseconds wanted = microseconds(1ms) * time / kSpeed;
    microseconds shortest = 1h;
    // A busy machine may come back late, but hardly each time.
    for (int tries = 0; tries < 5; ++tries) {
        const microseconds before = realTime();
        QCOMPARE(wait(time), 0);
        shortest = std::min(shortest, realTime() - before);
    }
    QVERIFY2(shortest >= wanted && shortest < wanted + 50ms, qPrintable(QString::number(shortest.count())));
}

QUILLON_TEST_CORE(FasterClockTest)
#include "tst_faster_clock.moc"
