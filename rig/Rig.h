// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoaderPort.h"
#include "rig/FaultBoard.h"
#include "rig/Journal.h"
#include "rig/RigThread.h"
#include "rig/SimulatedDevice.h"
#include "rig/ToolFile.h"
#include "rig/UpdateServer.h"
#include "rig/usb/UsbBus.h"

#include <QString>

#include <memory>

namespace rig {

/// How the device meets the panel.
enum class Bus {
    Installed, ///< as a transport of the HID library, in this process
    Usb ///< as a device on this machine's USB, which the library finds by itself
};

/// All of the simulated side, wired together:
///
///     rig::Rig rig;
///     if (!rig.start(&error)) ...
///     rig.device().plug(rig::Chip::Pc);
///
/// Make it on the GUI thread, before the first use of the HID library and of the network, and let it outlive
/// the panel.
class Rig {
public:
    Rig();
    ~Rig();
    Rig(const Rig &) = delete;
    Rig &operator=(const Rig &) = delete;

    /// Lays out the bus, starts the server and makes it the application's proxy, opens the boot loader's
    /// socket. False, with one English line in \a error, when something could not be had.
    bool start(QString *error = nullptr, Bus bus = Bus::Installed);

    Journal &journal() { return m_journal; }
    FaultBoard &faults() { return m_faults; }
    SimulatedDevice &device() { return m_device; }
    UpdateServer &server() { return m_server; }
    BootLoaderPort &bootLoader() { return m_bootLoader; }
    ToolFile &toolFile() { return m_toolFile; }

private:
    bool startBus(Bus bus, QString *error);

    Journal m_journal;
    FaultBoard m_faults;
    RigThread m_thread;
    SimulatedDevice m_device;
    UpdateServer m_server;
    BootLoaderPort m_bootLoader;
    ToolFile m_toolFile;
    std::unique_ptr<UsbBus> m_usb; // goes before the device does
};

} // namespace rig
