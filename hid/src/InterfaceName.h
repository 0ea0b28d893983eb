// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <QString>

#include <optional>

namespace HIDCommunicator {

/// Who is behind a HID interface of Windows', as far as its name tells; nothing where it names no USB device.
/// The name is not more than a name: who opens the interface asks the device itself.
///
///     \\?\hid#vid_352f&pid_000e&mi_03&col02#8&1a2b&0&0001#{4d1e55b2-f16f-11cf-88cb-001111000030}
std::optional<HidDeviceInfo> deviceNamed(const QString &interfaceName);

} // namespace HIDCommunicator
