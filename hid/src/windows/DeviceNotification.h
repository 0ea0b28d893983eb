// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <chrono>
#include <memory>

namespace HIDCommunicator {

struct NotificationFunctions;

/// Waits for HID interfaces that arrive and leave. Where the system gives no notifications it only waits: the
/// periodic scan remains.
class DeviceNotification {
public:
    DeviceNotification(); ///< with the system's functions
    explicit DeviceNotification(const NotificationFunctions &functions);
    ~DeviceNotification();
    DeviceNotification(const DeviceNotification &) = delete;
    DeviceNotification &operator=(const DeviceNotification &) = delete;

    /// As HidTransport::waitForHotplug().
    bool wait(std::chrono::milliseconds timeout);
    /// As HidTransport::interruptHotplugWait().
    void interrupt();

private:
    class Registration;

    void *m_changed; ///< event, set by the system's notification
    void *m_interrupted; ///< event, set by interrupt()
    std::unique_ptr<Registration> m_registration;
};

} // namespace HIDCommunicator
