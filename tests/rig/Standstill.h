// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/watch/ThreadProbe.h"

#include <QProcess>

#include <chrono>

#include <ctime>
#include <sys/resource.h>

/// Ways to keep the GUI thread from turning its event loop, by the machine's own time. Each is a function
/// that a stack can name.
namespace Standstill {

/// What this thread has had of a processor, as the kernel counts it.
inline std::chrono::nanoseconds ownTime()
{
    rusage used{};
    getrusage(RUSAGE_THREAD, &used);
    const auto from = [](const timeval &time) {
        return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
    };
    return from(used.ru_utime) + from(used.ru_stime);
}

/// However long it takes to get so much of a processor.
Q_NEVER_INLINE inline void compute(std::chrono::nanoseconds time)
{
    const std::chrono::nanoseconds end = ownTime() + time;
    while (ownTime() < end) { }
}

/// As often as it takes: the watch's looks wake the thread up.
Q_NEVER_INLINE inline void sleep(std::chrono::nanoseconds time)
{
    const std::chrono::nanoseconds end = rig::RealTime::now() + time;
    for (auto left = time; left.count() > 0; left = end - rig::RealTime::now())
        rig::RealTime::sleep(left);
}

/// Starts a program that hesitates for so long before it is there.
Q_NEVER_INLINE inline void startProgram(QProcess &program, std::chrono::nanoseconds time)
{
    program.setChildProcessModifier([time] { rig::RealTime::sleep(time); });
    program.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("read line")});
}

} // namespace Standstill
