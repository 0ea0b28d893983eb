// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the watch calls time, in a process whose clock runs many times as fast.
#include "rig/watch/StallRule.h"
#include "tests/rig/Standstill.h"
#include "tests/rig/WatchedScenario.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace rig;
using namespace std::chrono_literals;
using std::chrono::nanoseconds;

namespace {

// As the kernel tells it to whoever reads, in hundredths of a second.
nanoseconds upTime()
{
    QFile file(QStringLiteral("/proc/uptime"));
    if (!file.open(QIODevice::ReadOnly))
        return 0ns;
    return nanoseconds(qint64(file.readAll().split(' ').first().toDouble() * 1e9));
}

} // namespace

class RigWatchClockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theClockHereIsFast();
    void theWatchKeepsTheMachinesTime();
    void aMomentThatSeemsLongIsLeftAlone();
    void aLongStandstillIsNoticed();
};

void RigWatchClockTest::theClockHereIsFast()
{
    QElapsedTimer shown;
    shown.start();
    Standstill::sleep(100ms);
    QVERIFY2(shown.elapsed() > 1000, qPrintable(QString::number(shown.elapsed())));
}

void RigWatchClockTest::theWatchKeepsTheMachinesTime()
{
    const nanoseconds upBefore = upTime();
    QVERIFY(upBefore > 0ns);
    const nanoseconds before = RealTime::now();
    Standstill::compute(100ms);
    Standstill::sleep(100ms);
    const nanoseconds told = RealTime::now() - before;
    const nanoseconds passed = upTime() - upBefore;
    QVERIFY2(told >= 200ms, qPrintable(QString::number(told.count())));
    // What the kernel tells is cut off to hundredths.
    QVERIFY2(passed >= told - 10ms, qPrintable(QString::number(passed.count())));
}

// Seconds of the clock here.
void RigWatchClockTest::aMomentThatSeemsLongIsLeftAlone()
{
    QCOMPARE(WatchedScenario::with([] { Standstill::compute(kTurnLimit * 3 / 5); }).verdict, QString());
}

void RigWatchClockTest::aLongStandstillIsNoticed()
{
    const WatchedScenario scenario = WatchedScenario::with([] { Standstill::compute(kTurnLimit * 8 / 5); });
    QVERIFY2(scenario.verdict.contains(QStringLiteral("stood still")), qPrintable(scenario.verdict));
    QVERIFY(!scenario.stack.filter(QStringLiteral("Standstill::compute(")).isEmpty());
}

QUILLON_TEST_CORE(RigWatchClockTest)
#include "tst_rig_watch_clock.moc"
