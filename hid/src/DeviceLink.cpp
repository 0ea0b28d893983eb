// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "DeviceLink.h"

#include <utility>

namespace HIDCommunicator {

DeviceLink::DeviceLink(HidDeviceInfo device, std::unique_ptr<HidConnection> connection,
                       WaitableCount &openHandles)
    : m_device(std::move(device))
    , m_connection(std::move(connection))
    , m_openHandles(openHandles)
{
    m_openHandles.add();
}

DeviceLink::~DeviceLink()
{
    m_connection.reset();
    m_openHandles.remove();
}

} // namespace HIDCommunicator
