// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace HIDCommunicator {

/// Reports that wait for the send thread, oldest first. Bounded: a device that stays away must not let the
/// questions asked meanwhile pile up. Every function may be called from any thread.
class SendQueue {
public:
    static constexpr std::size_t kCapacity = 64;

    /// Appends \a report; when the queue is full, the oldest one is given up and a line is logged.
    void push(const QByteArray &report);

    /// Waits for a report and takes it out. Nothing once \a stopped is set and wake() was called.
    std::optional<QByteArray> take(const std::atomic<bool> &stopped);

    /// Lets a waiting take() look at its stop flag.
    void wake();

    void clear();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<QByteArray> m_reports;
};

} // namespace HIDCommunicator
