// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "WindowsTransport.h"

#include "HidCollections.h"
#include "HidapiConnection.h"

namespace HIDCommunicator {

std::optional<QList<HidDeviceInfo>> WindowsTransport::enumerate(int vendorId)
{
    return listHidCollections(vendorId);
}

std::unique_ptr<HidConnection> WindowsTransport::open(const QString &path)
{
    return familyReports(path) != FamilyReports::No ? openThroughHidapi(path.toUtf8()) : nullptr;
}

std::unique_ptr<HidTransport> makeDefaultTransport()
{
    return std::make_unique<WindowsTransport>();
}

} // namespace HIDCommunicator
