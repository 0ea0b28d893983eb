// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "SendQueue.h"

#include "LoggingCategory.h"

namespace HIDCommunicator {

void SendQueue::push(const QByteArray &report)
{
    bool dropped = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_reports.size() == kCapacity) {
            m_reports.pop_front();
            dropped = true;
        }
        m_reports.push_back(report);
    }
    m_changed.notify_one();
    // Outside the lock: a message handler may do anything, sending included.
    if (dropped)
        qCWarning(hidCategory, "[HID] send queue full, oldest report dropped");
}

std::optional<QByteArray> SendQueue::take(const std::atomic<bool> &stopped)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return stopped || !m_reports.empty(); });
    if (stopped)
        return std::nullopt;
    const QByteArray report = m_reports.front();
    m_reports.pop_front();
    return report;
}

void SendQueue::wake()
{
    // The lock closes the gap between take()'s look at the flag and its wait.
    {
        const std::lock_guard lock(m_mutex);
    }
    m_changed.notify_all();
}

void SendQueue::clear()
{
    const std::lock_guard lock(m_mutex);
    m_reports.clear();
}

} // namespace HIDCommunicator
