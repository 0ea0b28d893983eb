// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <condition_variable>
#include <mutex>

/// A place where threads of the library get stuck while it is armed.
class Hang {
public:
    ~Hang() { disarm(); }

    void passBy()
    {
        std::unique_lock lock(m_mutex);
        ++m_inside;
        m_changed.wait(lock, [this] { return !m_armed; });
        --m_inside;
        m_changed.notify_all();
    }

    void arm()
    {
        const std::lock_guard lock(m_mutex);
        m_armed = true;
    }

    /// Lets go of the threads and waits until they have left.
    void disarm()
    {
        std::unique_lock lock(m_mutex);
        m_armed = false;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_inside == 0; });
    }

    /// That a thread is stuck, or that nothing is armed.
    bool isAsExpected()
    {
        const std::lock_guard lock(m_mutex);
        return (m_inside > 0) == m_armed;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_armed = false;
    int m_inside = 0;
};
