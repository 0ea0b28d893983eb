// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Where there is no short way to see what another thread does.
#include "rig/watch/ThreadProbe.h"

#include <thread>

namespace rig {

struct ThreadProbe::Place { };

std::chrono::nanoseconds RealTime::now()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

void RealTime::sleep(std::chrono::nanoseconds time)
{
    std::this_thread::sleep_for(time);
}

ThreadProbe::ThreadProbe() = default;
ThreadProbe::~ThreadProbe() = default;

bool ThreadProbe::seesStacks()
{
    return false;
}

void ThreadProbe::ask() { }

std::optional<ThreadProbe::Look> ThreadProbe::takeAnswer()
{
    return {};
}

ThreadProbe::State ThreadProbe::state() const
{
    return State::Ready;
}

ThreadProbe::Others ThreadProbe::others() const
{
    return {};
}

ThreadProbe::Share ThreadProbe::share() const
{
    return {};
}

QString exportedFunctionAt(void *)
{
    return {};
}

QString describeAddress(void *)
{
    return {};
}

bool isSystemCode(void *)
{
    return true;
}

} // namespace rig
