// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/watch/StallRule.h"
#include "tests/rig/Standstill.h"
#include "tests/rig/WatchedScenario.h"
#include "tests/support/TestProgram.h"

#include <QEventLoop>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <memory>
#include <vector>

#include <sched.h>

using namespace rig;
using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

namespace {

using Task = std::function<void()>;
using Work = void (*)(nanoseconds time);

// Well below the limit, and well above it: 150 ms and 400 ms of 250 ms.
constexpr nanoseconds kShort = kTurnLimit * 3 / 5;
constexpr nanoseconds kLong = kTurnLimit * 8 / 5;

Q_NEVER_INLINE void turnNestedLoop(nanoseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(std::chrono::ceil<milliseconds>(time), Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

Q_NEVER_INLINE void computeAndTurn(nanoseconds time)
{
    for (nanoseconds done = 0ns; done < 3 * time; done += time) {
        Standstill::compute(time);
        QCoreApplication::processEvents();
    }
}

Q_NEVER_INLINE void awaitStart(nanoseconds time)
{
    QProcess program;
    Standstill::startProgram(program, time);
    QVERIFY(program.waitForStarted());
    program.kill();
    program.waitForFinished();
}

Q_NEVER_INLINE void awaitEnd(nanoseconds time)
{
    QProcess program;
    Standstill::startProgram(program, 0ns);
    program.waitForFinished(int(std::chrono::ceil<milliseconds>(time).count()));
    program.kill();
    program.waitForFinished();
}

Q_NEVER_INLINE void awaitOutput(nanoseconds time)
{
    QProcess program;
    Standstill::startProgram(program, 0ns);
    program.waitForReadyRead(int(std::chrono::ceil<milliseconds>(time).count()));
    program.kill();
    program.waitForFinished();
}

cpu_set_t allowedProcessors()
{
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    sched_getaffinity(0, sizeof allowed, &allowed);
    return allowed;
}

// The last of those allowed, alone.
cpu_set_t oneProcessorOf(const cpu_set_t &allowed)
{
    cpu_set_t one;
    CPU_ZERO(&one);
    for (int cpu = CPU_SETSIZE - 1; cpu >= 0 && CPU_COUNT(&one) == 0; --cpu) {
        if (CPU_ISSET(cpu, &allowed))
            CPU_SET(cpu, &one);
    }
    return one;
}

// Programs that never rest, on one processor together with the thread that starts them.
class Crowd {
public:
    explicit Crowd(int size)
        : m_allowed(allowedProcessors())
    {
        const cpu_set_t one = oneProcessorOf(m_allowed);
        sched_setaffinity(0, sizeof one, &one);
        m_programs.reserve(size);
        for (int number = 0; number < size; ++number) {
            m_programs.push_back(std::make_unique<QProcess>());
            m_programs.back()->start(QStringLiteral("/bin/sh"),
                                     {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
        }
    }
    ~Crowd()
    {
        for (const auto &program : m_programs) {
            program->kill();
            program->waitForFinished();
        }
        sched_setaffinity(0, sizeof m_allowed, &m_allowed);
    }
    Crowd(const Crowd &) = delete;
    Crowd &operator=(const Crowd &) = delete;

private:
    const cpu_set_t m_allowed;
    std::vector<std::unique_ptr<QProcess>> m_programs;
};

Q_NEVER_INLINE void awaitThread(Work work, nanoseconds time)
{
    const std::unique_ptr<QThread> thread(QThread::create([work, time] { work(time); }));
    thread->start();
    thread->wait();
}

void awaitWorkingThread(nanoseconds time)
{
    awaitThread(Standstill::compute, time);
}

} // namespace

class RigWatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLoopThatTurnsIsLeftAlone_data();
    void aLoopThatTurnsIsLeftAlone();
    void aStandstillFailsTheScenario_data();
    void aStandstillFailsTheScenario();
    void aBusyMachineIsNotBlamed_data();
    void aBusyMachineIsNotBlamed();
    void aBusyMachineIsNoExcuse();
    void theWholeTimeIsTold();
    void aStatedWaitHasItsLimit();
};

void RigWatchTest::aLoopThatTurnsIsLeftAlone_data()
{
    QTest::addColumn<Task>("task");
    QTest::newRow("nothing to do") << Task([] {});
    QTest::newRow("short work") << Task([] { Standstill::compute(kShort); });
    QTest::newRow("short sleep") << Task([] { Standstill::sleep(kShort); });
    QTest::newRow("a nested loop") << Task([] { turnNestedLoop(2 * kTurnLimit); });
    QTest::newRow("work in pieces") << Task([] { computeAndTurn(kShort); });
    QTest::newRow("a program is being started") << Task([] { awaitStart(2 * kTurnLimit); });
    QTest::newRow("a program is being ended") << Task([] { awaitEnd(kLong); });
}

void RigWatchTest::aLoopThatTurnsIsLeftAlone()
{
    QFETCH(Task, task);
    const WatchedScenario scenario = WatchedScenario::with(task);
    QCOMPARE(scenario.verdict, QString());
    QCOMPARE(scenario.stack, QStringList());
}

void RigWatchTest::aStandstillFailsTheScenario_data()
{
    QTest::addColumn<Task>("task");
    QTest::addColumn<QString>("culprit");
    QTest::newRow("long work") << Task([] { Standstill::compute(kLong); })
                               << QStringLiteral("Standstill::compute(");
    QTest::newRow("long sleep") << Task([] { Standstill::sleep(kLong); })
                                << QStringLiteral("Standstill::sleep(");
    // One that works would be the machine's fault while others have the processors.
    QTest::newRow("a wait for a thread that sleeps")
        << Task([] { awaitThread(Standstill::sleep, kLong); }) << QStringLiteral("awaitThread(");
    QTest::newRow("a wait that is not stated")
        << Task([] { awaitOutput(kLong); }) << QStringLiteral("awaitOutput(");
    QTest::newRow("long work after a stated wait") << Task([] {
        awaitStart(kShort);
        Standstill::compute(kLong);
    }) << QStringLiteral("Standstill::compute(");
}

void RigWatchTest::aStandstillFailsTheScenario()
{
    QFETCH(Task, task);
    QFETCH(QString, culprit);
    const WatchedScenario scenario = WatchedScenario::with(task);
    QVERIFY2(scenario.verdict.startsWith(QStringLiteral("x.scn:1: recover: the GUI thread stood still for ")),
             qPrintable(scenario.verdict));
    QVERIFY2(!scenario.stack.filter(culprit).isEmpty(), qPrintable(scenario.stack.join(u'\n')));
}

void RigWatchTest::aBusyMachineIsNotBlamed_data()
{
    QTest::addColumn<Work>("work");
    QTest::newRow("work") << Work(Standstill::compute);
    QTest::newRow("a wait for a thread that works") << Work(awaitWorkingThread);
}

void RigWatchTest::aBusyMachineIsNotBlamed()
{
    QFETCH(Work, work);
    const WatchedScenario scenario = WatchedScenario::with([work] {
        const Crowd crowd(2);
        const nanoseconds start = RealTime::now();
        work(kShort);
        const nanoseconds taken = RealTime::now() - start;
        QVERIFY2(taken > kTurnLimit, qPrintable(QString::number(taken.count())));
    });
    QCOMPARE(scenario.verdict, QString());
}

void RigWatchTest::aBusyMachineIsNoExcuse()
{
    const WatchedScenario scenario = WatchedScenario::with([] {
        const Crowd crowd(2);
        Standstill::compute(kLong);
    });
    QVERIFY(scenario.verdict.contains(QStringLiteral("stood still")));
    QVERIFY(!scenario.stack.filter(QStringLiteral("Standstill::compute(")).isEmpty());
}

void RigWatchTest::theWholeTimeIsTold()
{
    const WatchedScenario scenario = WatchedScenario::with([] { Standstill::compute(3 * kTurnLimit); });
    const QRegularExpressionMatch match
        = QRegularExpression(QStringLiteral("stood still for (\\d+) ms in .+\\[tst_rig\\]$"))
              .match(scenario.verdict);
    QVERIFY2(match.hasMatch(), qPrintable(scenario.verdict));
    QVERIFY2(match.captured(1).toInt() > (2 * kTurnLimit).count(), qPrintable(scenario.verdict));
}

void RigWatchTest::aStatedWaitHasItsLimit()
{
    for (const StatedWait &wait : statedWaits()) {
        Stretch stretch;
        stretch.add(1s, wait.limit, &wait);
        QCOMPARE(stretch.frozen(), nanoseconds(0));
        stretch.add(40ms, 1ms, &wait);
        QCOMPARE(stretch.frozen(), nanoseconds(40ms));
        stretch.add(7ms, 1ms);
        QCOMPARE(stretch.frozen(), nanoseconds(47ms));
    }
}

QUILLON_TEST_CORE(RigWatchTest)
#include "tst_rig_watch.moc"
