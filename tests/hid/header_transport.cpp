// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiles only while the transport's header needs nothing before it.
#include <HIDCommunicator/HidTransport.h>

bool installNoTransport()
{
    return HIDCommunicator::installTransport(nullptr);
}
