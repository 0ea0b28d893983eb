// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The time comes from the kernel itself, past the C library, whose clock the tests let run faster. The stack
// is walked by the thread itself, in the handler of a signal.
#include "rig/watch/ThreadProbe.h"

#include <QByteArray>
#include <QDir>

#include <algorithm>
#include <atomic>

#include <cerrno>
#include <csignal>
#include <ctime>

#include <execinfo.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace rig {

using std::chrono::nanoseconds;

namespace {

constexpr int kDeepest = 128;
/// The handler and the kernel's way into it.
constexpr int kFramesOfTheHandler = 2;
/// One that a process without a handler ignores, in case it arrives late.
constexpr int kSignal = SIGURG;

/// Of the signal's handler, which may not so much as take memory.
struct Answer {
    int statistics = -1;
    timespec at{};
    char share[80];
    ssize_t shareSize = 0;
    void *frames[kDeepest];
    int count = 0;
    std::atomic<bool> given{false};
};
Answer answer;

void lookAround(int)
{
    const int error = errno;
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &answer.at);
    answer.shareSize = pread(answer.statistics, answer.share, sizeof answer.share, 0);
    answer.count = backtrace(answer.frames, kDeepest);
    answer.given.store(true, std::memory_order_release);
    errno = error;
}

nanoseconds from(const timespec &time)
{
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

int ownNumber()
{
    return int(syscall(SYS_gettid));
}

/// What the kernel tells of a thread of this process.
class KernelFile {
public:
    KernelFile(int thread, const char *name)
        : m_descriptor(open(pathOf(thread, name).constData(), O_RDONLY | O_CLOEXEC))
    {
    }
    ~KernelFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    KernelFile(const KernelFile &) = delete;
    KernelFile &operator=(const KernelFile &) = delete;

    int descriptor() const { return m_descriptor; }

    /// As it is now; empty when the thread has ended, or where the kernel has no such file.
    QByteArray text() const
    {
        char text[200];
        const ssize_t size = pread(m_descriptor, text, sizeof text, 0);
        return {text, std::max<ssize_t>(size, 0)};
    }

private:
    static QByteArray pathOf(int thread, const char *name)
    {
        return "/proc/self/task/" + QByteArray::number(thread) + '/' + name;
    }

    const int m_descriptor;
};

/// A letter, behind the program's name, which may hold anything.
char stateIn(const QByteArray &stat)
{
    return stat.mid(stat.lastIndexOf(')') + 2, 1).append(' ').front();
}

// The first two numbers. Of a kernel that keeps no such statistics nothing is known.
ThreadProbe::Share shareIn(const QByteArray &statistics)
{
    const QList<QByteArray> numbers = statistics.split(' ');
    return {nanoseconds(numbers.value(0).toLongLong()), nanoseconds(numbers.value(1).toLongLong())};
}

} // namespace

nanoseconds RealTime::now()
{
    timespec time{};
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return from(time);
}

void RealTime::sleep(nanoseconds time)
{
    const auto whole = std::chrono::floor<std::chrono::seconds>(time);
    const timespec length{time_t(whole.count()), long((time - whole).count())};
    syscall(SYS_clock_nanosleep, CLOCK_MONOTONIC, 0, &length, nullptr);
}

struct ThreadProbe::Place {
    const pthread_t thread = pthread_self();
    const int number = ownNumber();
    const KernelFile statistics{number, "schedstat"};
    const KernelFile stat{number, "stat"};
    struct sigaction former { };
};

ThreadProbe::ThreadProbe()
    : m_place(std::make_unique<Place>())
{
    // Its first use loads a library, which no handler may do.
    void *frame = nullptr;
    backtrace(&frame, 1);
    struct sigaction action { };
    action.sa_handler = lookAround;
    action.sa_flags = SA_RESTART;
    answer.statistics = m_place->statistics.descriptor();
    answer.given = false;
    sigaction(kSignal, &action, &m_place->former);
}

ThreadProbe::~ThreadProbe()
{
    sigaction(kSignal, &m_place->former, nullptr);
}

bool ThreadProbe::seesStacks()
{
    return true;
}

ThreadProbe::Share ThreadProbe::share() const
{
    return shareIn(m_place->statistics.text());
}

void ThreadProbe::ask()
{
    pthread_kill(m_place->thread, kSignal);
}

std::optional<ThreadProbe::Look> ThreadProbe::takeAnswer()
{
    if (!answer.given.load(std::memory_order_acquire))
        return {};
    Look look;
    look.at = from(answer.at);
    look.share = shareIn(QByteArray(answer.share, std::max<ssize_t>(answer.shareSize, 0)));
    const int skipped = std::min(kFramesOfTheHandler, answer.count);
    look.stack = QList<void *>(answer.frames + skipped, answer.frames + answer.count);
    answer.given.store(false, std::memory_order_relaxed);
    return look;
}

ThreadProbe::State ThreadProbe::state() const
{
    switch (stateIn(m_place->stat.text())) {
    case 'S':
        return State::Asleep;
    case 'D':
        return State::Unreachable;
    default:
        return State::Ready;
    }
}

ThreadProbe::Others ThreadProbe::others() const
{
    Others others;
    const QStringList threads
        = QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : threads) {
        const int thread = entry.toInt();
        if (thread == m_place->number || thread == ownNumber())
            continue;
        others.areReady = others.areReady || stateIn(KernelFile(thread, "stat").text()) == 'R';
        others.onProcessor += shareIn(KernelFile(thread, "schedstat").text()).onProcessor;
    }
    return others;
}

} // namespace rig
