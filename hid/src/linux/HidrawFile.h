// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "Descriptor.h"

#include "DevicePath.h"

namespace HIDCommunicator {

/// Opens the device file of \a wanted, and asks the open device itself whether it is the one: a node's name
/// may pass to another device at any moment. Closed when it cannot be opened, is not ready, is another
/// device, or does not carry the family's reports. No program that this one starts inherits it.
Descriptor openHidrawFile(const DevicePath &wanted);

} // namespace HIDCommunicator
