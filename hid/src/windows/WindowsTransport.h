// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "DeviceNotification.h"
#include "HidCollections.h"

#include <HIDCommunicator/HidTransport.h>

namespace HIDCommunicator {

/// The bus of a Windows system: devices and events from the configuration manager, reports through the HID
/// class driver.
class WindowsTransport : public HidTransport {
public:
    WindowsTransport();
    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override;
    std::unique_ptr<HidConnection> open(const QString &path) override;
    bool waitForHotplug(std::chrono::milliseconds timeout) override;
    void interruptHotplugWait() override { m_notification.interrupt(); }

private:
    HidCollections m_collections;
    DeviceNotification m_notification;
};

} // namespace HIDCommunicator
