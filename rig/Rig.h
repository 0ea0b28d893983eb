#pragma once

#include "rig/BootLoaderPort.h"
#include "rig/FaultBoard.h"
#include "rig/Journal.h"
#include "rig/RigThread.h"
#include "rig/SimulatedDevice.h"
#include "rig/ToolFile.h"
#include "rig/UpdateServer.h"

#include <QString>

namespace rig {

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

    /// Installs the bus in the HID library, starts the server and makes it the application's proxy, opens the
    /// boot loader's socket. False, with one English line in \a error, when something could not be had.
    bool start(QString *error = nullptr);

    Journal &journal() { return m_journal; }
    FaultBoard &faults() { return m_faults; }
    SimulatedDevice &device() { return m_device; }
    UpdateServer &server() { return m_server; }
    BootLoaderPort &bootLoader() { return m_bootLoader; }
    ToolFile &toolFile() { return m_toolFile; }

private:
    Journal m_journal;
    FaultBoard m_faults;
    RigThread m_thread;
    SimulatedDevice m_device;
    UpdateServer m_server;
    BootLoaderPort m_bootLoader;
    ToolFile m_toolFile;
};

} // namespace rig
