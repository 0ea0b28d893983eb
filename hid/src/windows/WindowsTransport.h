// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "DeviceNotification.h"

#include <HIDCommunicator/HidTransport.h>

namespace HIDCommunicator {

/// The bus of a Windows system: devices and reports through hidapi, events from the configuration manager.
class WindowsTransport : public HidTransport {
public:
    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override;
    std::unique_ptr<HidConnection> open(const QString &path) override;
    bool waitForHotplug(std::chrono::milliseconds timeout) override { return m_notification.wait(timeout); }
    void interruptHotplugWait() override { m_notification.interrupt(); }

private:
    DeviceNotification m_notification;
};

} // namespace HIDCommunicator
