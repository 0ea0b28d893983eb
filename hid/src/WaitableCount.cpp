// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "WaitableCount.h"

namespace HIDCommunicator {

WaitableCount::WaitableCount(int count)
    : m_count(count)
{
}

void WaitableCount::add()
{
    ++m_count;
}

void WaitableCount::remove()
{
    const std::lock_guard lock(m_mutex);
    if (--m_count == 0)
        m_zero.notify_all();
}

void WaitableCount::waitZero()
{
    std::unique_lock lock(m_mutex);
    m_zero.wait(lock, [this] { return isZero(); });
}

bool WaitableCount::waitZero(Deadline deadline)
{
    std::unique_lock lock(m_mutex);
    return m_zero.wait_until(lock, deadline, [this] { return isZero(); });
}

} // namespace HIDCommunicator
