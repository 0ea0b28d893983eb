// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace HIDCommunicator {

/// The end of a bounded wait. On the system clock: the steady clock's wait is not known to the tools that
/// speed up a process's clock for a test, and goes wrong there. That clocks are set meanwhile does no harm:
/// whoever is waited for reports its end.
using Deadline = std::chrono::system_clock::time_point;

inline Deadline deadlineIn(std::chrono::milliseconds limit)
{
    return std::chrono::system_clock::now() + limit;
}

/// Counts what is still there, and lets somebody wait for the end of it. Every function may be called from
/// any thread.
class WaitableCount {
public:
    explicit WaitableCount(int count = 0);

    void add();
    void remove();
    bool isZero() const { return m_count == 0; }
    void waitZero();
    /// Whether nothing is left, waiting for that until \a deadline.
    bool waitZero(Deadline deadline);

private:
    std::mutex m_mutex;
    std::condition_variable m_zero;
    std::atomic<int> m_count;
};

} // namespace HIDCommunicator
