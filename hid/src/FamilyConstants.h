// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

namespace HIDCommunicator {

constexpr int kFamilyVendorId = 0x352F;

// What blockHidConnetStatus() says.
constexpr int kStatusConnected = 0;
constexpr int kStatusGone = 1;

} // namespace HIDCommunicator
