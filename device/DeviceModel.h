// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

namespace QuillonFirmwareUpgrade {

/// The device models that a panel can serve. A value outside the two is served as R2.
enum class DeviceModel : int { R1 = 0, R2 = 1 };

} // namespace QuillonFirmwareUpgrade
