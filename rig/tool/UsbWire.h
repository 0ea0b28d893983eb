// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/tool/ChipWire.h"

#include <memory>

namespace tool {

/// The way to a chip over the machine's own USB; null where there is none.
std::unique_ptr<ChipWire> makeUsbWire();

} // namespace tool
