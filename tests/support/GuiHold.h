// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <ctime>

/// How long the GUI thread computes at most between two turns of an event loop while this lives. Counted in
/// the thread's own processor time, so that a busy machine does not matter. GUI thread only.
class GuiHold {
public:
    GuiHold()
    {
        QObject::connect(&m_turn, &QTimer::timeout, &m_turn, [this] { take(); });
        m_turn.start(0);
    }

    std::chrono::milliseconds longest()
    {
        take();
        return std::chrono::duration_cast<std::chrono::milliseconds>(m_longest);
    }

private:
    static std::chrono::nanoseconds threadTime()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    void take()
    {
        const std::chrono::nanoseconds now = threadTime();
        m_longest = std::max(m_longest, now - m_last);
        m_last = now;
    }

    QTimer m_turn;
    std::chrono::nanoseconds m_last = threadTime();
    std::chrono::nanoseconds m_longest{0};
};

/// What nothing from outside may exceed. Sanitizers slow the same work down several times.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::milliseconds kLongestHold{800};
#else
constexpr std::chrono::milliseconds kLongestHold{100};
#endif
