// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/UsbWire.h"

namespace tool {

std::unique_ptr<ChipWire> makeUsbWire()
{
    return nullptr;
}

} // namespace tool
