// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "Udev.h"
#include "WakeUp.h"

#include <chrono>

namespace HIDCommunicator {

/// Waits for hidraw nodes that come and go. Where the system gives no events it only waits: the periodic scan
/// remains.
class BusMonitor {
public:
    BusMonitor();

    /// As HidTransport::waitForHotplug().
    bool wait(std::chrono::milliseconds timeout);
    /// As HidTransport::interruptHotplugWait().
    void interrupt() { m_interrupt.raise(); }

private:
    bool takeEvents(short found);

    UdevPointer<udev> m_context;
    UdevPointer<udev_monitor> m_monitor;
    WakeUp m_interrupt;
};

} // namespace HIDCommunicator
