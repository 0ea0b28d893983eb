// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <QByteArray>

#include <memory>
#include <mutex>

namespace HIDCommunicator {

/// Opens what the system calls \a systemPath through hidapi; null when it has left or may not be opened.
std::unique_ptr<HidConnection> openThroughHidapi(const QByteArray &systemPath);

/// Held while hidapi lists, opens or closes devices: it keeps one error text for the whole process.
std::mutex &hidapiMutex();

} // namespace HIDCommunicator
