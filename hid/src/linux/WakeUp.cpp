// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "WakeUp.h"

#include <sys/eventfd.h>

namespace HIDCommunicator {

WakeUp::WakeUp()
    : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

void WakeUp::raise()
{
    eventfd_write(m_event.get(), 1);
}

void WakeUp::take()
{
    eventfd_t count = 0;
    eventfd_read(m_event.get(), &count);
}

} // namespace HIDCommunicator
