// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoaderPort.h"
#include "rig/Journal.h"
#include "rig/RigThread.h"
#include "rig/SimulatedDevice.h"

#include <QString>

#include <memory>

namespace rig {

/// Puts \a device on this machine's own USB, so that the system itself finds it, by way of a controller
/// without hardware behind it for each port (Linux's dummy_hcd): every interface that the device shows is a
/// USB device with its product ID for as long. Flashing tools reach the chips over it too. One thread calls
/// its functions.
class UsbBus {
public:
    UsbBus(SimulatedDevice &device, BootLoaderPort &bootLoaders, Journal &journal);
    ~UsbBus();
    UsbBus(const UsbBus &) = delete;
    UsbBus &operator=(const UsbBus &) = delete;

    /// False, with one line in \a error, when the machine cannot be a USB device.
    bool start(QString *error);

private:
    class Mirror;
    SimulatedDevice &m_device;
    RigThread m_thread; // plugging takes its time
    std::unique_ptr<Mirror> m_mirror; // lives on the thread
};

} // namespace rig
