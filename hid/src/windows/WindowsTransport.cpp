// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "WindowsTransport.h"

#include "CollectionConnection.h"
#include "CollectionFile.h"
#include "InterfaceList.h"
#include "InterfaceName.h"

namespace HIDCommunicator {

WindowsTransport::WindowsTransport()
    : m_collections({&hidInterfaces, &reportsBehind})
{
}

std::optional<QList<HidDeviceInfo>> WindowsTransport::enumerate(int vendorId)
{
    return m_collections.list(vendorId);
}

std::unique_ptr<HidConnection> WindowsTransport::open(const QString &path)
{
    const auto wanted = deviceNamed(path);
    return wanted ? connectCollection(openCollection(*wanted)) : nullptr;
}

bool WindowsTransport::waitForHotplug(std::chrono::milliseconds timeout)
{
    const bool changed = m_notification.wait(timeout);
    if (changed)
        m_collections.forget();
    return changed;
}

std::unique_ptr<HidTransport> makeDefaultTransport()
{
    return std::make_unique<WindowsTransport>();
}

} // namespace HIDCommunicator
