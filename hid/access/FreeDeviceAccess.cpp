// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Systems that leave HID devices to everybody.
#include "hid/access/DeviceAccess.h"

namespace DeviceAccess {

bool isDenied(const QString &)
{
    return false;
}

bool isFileDenied(const QString &)
{
    return false;
}

QString hint()
{
    return {};
}

} // namespace DeviceAccess
