// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "WaitableCount.h"

#include <HIDCommunicator/HidTransport.h>

#include <memory>

namespace HIDCommunicator {

/// One open device, held together by everybody who uses it: the manager while it counts as connected, the
/// send and the receive thread while they work on it. The last one to let go closes the handle.
class DeviceLink {
public:
    /// \a openHandles is what a caller waits on before the next device is opened.
    DeviceLink(HidDeviceInfo device, std::unique_ptr<HidConnection> connection, WaitableCount &openHandles);
    ~DeviceLink();
    DeviceLink(const DeviceLink &) = delete;
    DeviceLink &operator=(const DeviceLink &) = delete;

    const HidDeviceInfo &device() const { return m_device; }
    HidConnection &connection() { return *m_connection; }

private:
    HidDeviceInfo m_device;
    std::unique_ptr<HidConnection> m_connection;
    WaitableCount &m_openHandles;
};

} // namespace HIDCommunicator
