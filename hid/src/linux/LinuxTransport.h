// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "BusMonitor.h"
#include "HidrawNodes.h"

#include <HIDCommunicator/HidTransport.h>

namespace HIDCommunicator {

/// The bus of a Linux system: devices and events from udev, reports through hidraw.
class LinuxTransport : public HidTransport {
public:
    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override { return m_nodes.list(vendorId); }
    std::unique_ptr<HidConnection> open(const QString &path) override;
    bool waitForHotplug(std::chrono::milliseconds timeout) override { return m_monitor.wait(timeout); }
    void interruptHotplugWait() override { m_monitor.interrupt(); }

private:
    HidrawNodes m_nodes;
    BusMonitor m_monitor;
};

} // namespace HIDCommunicator
