// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Belongings.h"

#include <QDeadlineTimer>
#include <QThread>

inline int threadsOfThisProcess()
{
    return int(rig::Belongings::threadsOfThisProcess().size());
}

inline int descriptorsOfThisProcess()
{
    return int(rig::Belongings::handlesOfThisProcess().size());
}

/// What \a count comes to once it stands still: the system lists a thread for a moment longer than it takes
/// to be joined.
template <typename Count> int settled(Count count)
{
    constexpr int kLooks = 10;
    constexpr unsigned long kPauseMs = 20;
    const QDeadlineTimer patience(10000);
    int last = count();
    for (int same = 0; same < kLooks && !patience.hasExpired(); ++same) {
        QThread::msleep(kPauseMs);
        const int now = count();
        if (now != last)
            same = 0;
        last = now;
    }
    return last;
}
