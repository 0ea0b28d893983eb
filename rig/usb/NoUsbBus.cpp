// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Where the system offers no way to be a USB device.
#include "rig/usb/UsbBus.h"

namespace rig {

class UsbBus::Mirror { };

UsbBus::UsbBus(SimulatedDevice &device, BootLoaderPort &, Journal &)
    : m_device(device)
{
}

UsbBus::~UsbBus() = default;

bool UsbBus::start(QString *error)
{
    *error = QStringLiteral("only Linux can be a USB device");
    return false;
}

} // namespace rig
