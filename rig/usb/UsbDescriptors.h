// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

namespace rig::usb {

/// Full speed's largest packet for an interrupt endpoint: a report takes two of them.
constexpr int kPacketSize = 64;

/// What the device's reports look like to a HID host: the register protocol's and the boot loader's, each as
/// long as the other, both ways.
const QByteArray &reportDescriptor();

/// What FunctionFS is told first: one HID interface with an interrupt endpoint either way, IN first.
QByteArray interfaceDescriptors();
QByteArray interfaceStrings(); ///< none

} // namespace rig::usb
