// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "LinuxTransport.h"

#include "HidrawConnection.h"
#include "HidrawFile.h"

namespace HIDCommunicator {

std::unique_ptr<HidConnection> LinuxTransport::open(const QString &path)
{
    const auto wanted = m_nodes.openable(path);
    return wanted ? connectHidraw(openHidrawFile(*wanted)) : nullptr;
}

std::unique_ptr<HidTransport> makeDefaultTransport()
{
    return std::make_unique<LinuxTransport>();
}

} // namespace HIDCommunicator
