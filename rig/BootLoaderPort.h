// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoader.h"
#include "rig/FaultBoard.h"
#include "rig/Journal.h"
#include "rig/RigThread.h"
#include "rig/SimulatedDevice.h"

#include <QList>
#include <QMutex>
#include <QObject>
#include <QStringList>

#include <array>
#include <atomic>
#include <chrono>

class QLocalServer;

namespace rig {

/// One start of the flashing tool, as far as the device's side saw it.
struct ToolRun {
    std::chrono::milliseconds started{0}; ///< the journal's time when the tool reported
    std::chrono::milliseconds ended{-1}; ///< when its connection ended; below 0: not yet
    qint64 processId = 0;
    QStringList arguments; ///< the real command line, program name left out
    int productId = 0;
    Model model = Model::R2;
    Chip chip = Chip::Pc;
    bool running = true; ///< the tool still holds its connection
    bool finished = false; ///< the whole image was taken and the chip told to restart
};

/// The local socket over which the stand-in flashing tool reaches the boot loaders of \a device. Its name
/// reaches the tool in the environment of this process (kSocketVariable). Runs on the rig's thread; every
/// function is thread-safe.
class BootLoaderPort : public QObject {
    Q_OBJECT

public:
    BootLoaderPort(RigThread &thread, SimulatedDevice &device, FaultBoard &faults, Journal &journal);
    ~BootLoaderPort() override;

    /// Opens the socket and names it in the environment. False when no socket could be had.
    bool start();

    /// From now on tools only say over the socket that they are there; the chips are reached by another way.
    void takeGreetingsOnly() { m_greetingsOnly = true; }
    bool takesGreetingsOnly() const { return m_greetingsOnly; }

    BootLoader &at(Chip chip) { return m_bootLoaders[std::size_t(chip)]; }

    QList<ToolRun> runs() const; ///< in the order they started, since the last forgetRuns()
    bool isFlashing() const; ///< a tool is connected right now
    void forgetRuns(); ///< keeps those that are still running

Q_SIGNALS:
    /// Emitted on the rig's thread.
    void toolStarted(const rig::ToolRun &run);
    void toolEnded(const rig::ToolRun &run);

private:
    // On the rig's thread.
    void acceptAll();
    void begin(const ToolRun &run);
    void end(const ToolRun &run);

    RigThread &m_thread;
    SimulatedDevice &m_device;
    FaultBoard &m_faults;
    Journal &m_journal;
    std::array<BootLoader, 2> m_bootLoaders;
    std::atomic<bool> m_greetingsOnly{false};
    QLocalServer *m_server = nullptr; // lives on the rig's thread
    mutable QMutex m_mutex;
    QList<ToolRun> m_runs;
};

} // namespace rig

Q_DECLARE_METATYPE(rig::ToolRun)
