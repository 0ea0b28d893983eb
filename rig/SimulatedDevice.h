// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FaultBoard.h"
#include "rig/Identity.h"
#include "rig/Journal.h"
#include "rig/RigThread.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QVersionNumber>

#include <chrono>
#include <memory>
#include <optional>

namespace rig {

enum class ChipState {
    Running, ///< its flash holds an intact image of its own kind, and it runs that
    BootLoader, ///< asked into the boot loader, or nothing else to run
    Restarting ///< off the bus for a moment
};

/// What one port of the device shows on the bus right now.
struct BusInterface {
    Chip chip;
    int productId;
    QString path; ///< carries "vid_352f&pid_xxxx"; a new one each time the interface appears
    std::chrono::milliseconds since{0}; ///< the journal's time when it appeared
};

/// What a host was told when it last read a chip's version registers.
struct VersionRead {
    QVersionNumber version; ///< as it was told: 0.0.0 for a chip that is not running
    std::chrono::milliseconds at{0}; ///< the journal's time
};

/// A device with two chips. It behaves as one does: it takes its time to enumerate and to restart, leaves the
/// bus when a cable is pulled, runs what its flash holds, and stays in the boot loader when that is nothing
/// usable.
///
/// Every function is thread-safe; none waits. Signals are emitted by the thread that caused them, restarts on
/// the rig's thread.
class SimulatedDevice : public QObject {
    Q_OBJECT

public:
    SimulatedDevice(RigThread &thread, FaultBoard &faults, Journal &journal);
    ~SimulatedDevice() override;

    /// Replaces the device by an unplugged one of \a model with both firmwares at "1.1.1".
    void setModel(Model model);
    Model model() const;

    /// Puts an intact image of \a version into the chip's flash and lets it run that, at once.
    void setVersion(Chip chip, const QVersionNumber &version);
    /// Leaves the chip without firmware: it is only found in its boot loader.
    void brick(Chip chip);

    void plug(Chip port);
    void unplug(Chip port);
    bool isPlugged(Chip port) const;

    ChipState state(Chip chip) const;
    QVersionNumber runningVersion(Chip chip) const; ///< null unless the chip is running
    QByteArray flash(Chip chip) const; ///< what was written since the last erase
    QList<BusInterface> interfaces() const; ///< what is on the bus; PC first
    QList<BusInterface> appearances() const; ///< the last interfaces there were, oldest first
    std::optional<VersionRead> lastRead(Chip chip) const;

    /// \name What the device does with a report, and what a flashing tool can reach over USB
    /// @{
    /// The reports (ID first) that the interface at  path answers  report with; none when it does not
    /// understand it.
    QList<QByteArray> answer(const QString &path, const QByteArray &report);
    bool isOnBus(const QString &path) const;
    bool mayBeOpened(const QString &path);
    bool enterBootLoader(Chip chip); ///< leaves the bus and comes back in the boot loader; false: not there
    bool erase(Chip chip); ///< these three: false unless the chip is on the bus in its boot loader
    bool write(Chip chip, int offset, const QByteArray &bytes);
    bool restart(Chip chip); ///< what a tool does last; false as for erase()
    /// @}

Q_SIGNALS:
    void interfaceAppeared(rig::Chip chip, int productId);
    void interfaceLeft(rig::Chip chip, int productId);
    void changed(); ///< anything a person could see: cables, states, versions
    void vanishing(); ///< the first thing the destructor does

private:
    struct Body;
    std::shared_ptr<Body> m_body;
};

} // namespace rig
