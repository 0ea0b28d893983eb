// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Preloaded before faketime, which makes a wait of poll() and ppoll() shorter as its clock is faster, but not
// exactly: of poll() it leaves whole milliseconds, so that an event loop ten times as fast does not sleep
// through the last nine before a timer but goes round and round, thousands of times a second; and of ppoll()
// it leaves what is below a second as it is. Here both wait as long as they should, to the microsecond.

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
constexpr double kNanosecondsPerSecond = 1e9;
constexpr double kNanosecondsPerMillisecond = 1e6;
/// What the kernel's signal sets take, which are smaller than those of the C library.
constexpr size_t kKernelSignalSetSize = 8;

/// How many times as fast the clock runs: FAKETIME is "+0 x10" then.
double speed()
{
    static const double factor = [] {
        const char *clock = std::getenv("FAKETIME");
        const char *rate = clock ? std::strrchr(clock, 'x') : nullptr;
        const double found = rate ? std::atof(rate + 1) : 1;
        return found > 0 ? found : 1;
    }();
    return factor;
}

timespec realTime(double nanoseconds)
{
    const double real = nanoseconds / speed();
    const auto seconds = time_t(real / kNanosecondsPerSecond);
    return {seconds, long(real - double(seconds) * kNanosecondsPerSecond)};
}

int waitFor(pollfd *descriptors, nfds_t count, timespec *time, const sigset_t *signals)
{
    return int(syscall(SYS_ppoll, descriptors, count, time, signals, kKernelSignalSetSize));
}
} // namespace

extern "C" [[gnu::visibility("default")]] int poll(pollfd *descriptors, nfds_t count, int milliseconds)
{
    if (milliseconds < 0)
        return waitFor(descriptors, count, nullptr, nullptr);
    timespec time = realTime(milliseconds * kNanosecondsPerMillisecond);
    return waitFor(descriptors, count, &time, nullptr);
}

extern "C" [[gnu::visibility("default")]] int ppoll(pollfd *descriptors, nfds_t count, const timespec *wait,
                                                    const sigset_t *signals)
{
    if (!wait)
        return waitFor(descriptors, count, nullptr, signals);
    timespec time = realTime(double(wait->tv_sec) * kNanosecondsPerSecond + double(wait->tv_nsec));
    return waitFor(descriptors, count, &time, signals);
}
