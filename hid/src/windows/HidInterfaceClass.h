// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <windows.h>

namespace HIDCommunicator {

/// The class of HID device interfaces, GUID_DEVINTERFACE_HID: the system's header only declares it.
constexpr GUID kHidInterfaceClass{
    0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};

} // namespace HIDCommunicator
