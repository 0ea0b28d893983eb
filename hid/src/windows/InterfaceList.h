// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QStringList>

#include <optional>

namespace HIDCommunicator {

/// The names of all HID interfaces of this machine, in the system's order and spelling; nothing when the
/// system does not tell. No device is opened to find that out.
std::optional<QStringList> hidInterfaces();

} // namespace HIDCommunicator
