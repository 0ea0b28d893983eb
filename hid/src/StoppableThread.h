// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "WaitableCount.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace HIDCommunicator {

/// One role (bus watch, sender, receiver), filled by at most one thread at a time. A stop is a request and a
/// bounded wait, because the caller may be the GUI thread and the thread may sit in a system call or in
/// somebody's slot. A thread that has not ended by then is left to end by itself: the next one in its role
/// begins after it. Every function may be called from any thread, the role's own included.
class StoppableThread {
public:
    /// Returns soon after \a stopped became true.
    using Body = std::function<void(const std::atomic<bool> &stopped)>;

    StoppableThread();
    ~StoppableThread();

    /// Fills the role unless a thread that was not asked to stop fills it already.
    void start(Body body);

    void requestStop();

    /// Whether the thread has ended and is collected, waiting for that until \a deadline. False at once when
    /// the role's own thread asks.
    bool waitEnded(Deadline deadline);

private:
    struct Run;

    std::mutex m_mutex;
    std::shared_ptr<Run> m_run;
};

} // namespace HIDCommunicator
