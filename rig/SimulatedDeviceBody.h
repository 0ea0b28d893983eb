// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/SimulatedChip.h"
#include "rig/SimulatedDevice.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

#include <array>
#include <chrono>

namespace rig {

struct BusChange {
    Chip chip;
    int productId;
    bool appeared;
};

/// The device's state and the moves it makes by itself. All but the constructor, change(), announce()
/// and install() are called with the mutex held.
struct SimulatedDevice::Body : std::enable_shared_from_this<Body> {
    Body(SimulatedDevice &device, RigThread &thread, FaultBoard &faults, Journal &journal)
        : device(device)
        , thread(thread)
        , faults(faults)
        , journal(journal)
    {
    }

    SimulatedDevice &device;
    RigThread &thread;
    FaultBoard &faults;
    Journal &journal;
    mutable QMutex mutex;
    Model model = Model::R2;
    std::array<SimulatedChip, 2> chips{SimulatedChip(identityOf(Model::R2, Chip::Pc)),
                                       SimulatedChip(identityOf(Model::R2, Chip::Otg))};
    QList<BusChange> busChanges; // to be announced when the mutex is released
    QHash<quint16, quint16> written; // registers that a host has set
    QList<BusInterface> appearances; // no more than the last kAppearancesKept
    int appeared = 0; // so many in all
    std::array<std::optional<VersionRead>, 2> reads;
    int steps = 0;

    SimulatedChip &at(Chip chip) { return chips[std::size_t(chip)]; }
    SimulatedChip *atPath(const QString &path);

    template <typename Act> auto change(Act act);
    void announce(const QList<BusChange> &changes);

    static constexpr qsizetype kAppearancesKept = 100;

    void leave(SimulatedChip &chip);
    void appear(SimulatedChip &chip);
    /// Takes \a step with the chip on the rig's thread, unless another one became due for it meanwhile.
    void later(SimulatedChip &chip, std::chrono::milliseconds delay, void (Body::*step)(SimulatedChip &));
    void restart(SimulatedChip &chip, std::chrono::milliseconds delay);
    void restartIntoBootLoader(SimulatedChip &chip, std::chrono::milliseconds delay);
    void boot(SimulatedChip &chip);
    void stayInBootLoader(SimulatedChip &chip);
    void enumerate(SimulatedChip &chip);
    void powerUp(SimulatedChip &plugged, bool wasDark);
    void install(Chip chip, const QByteArray &flash);
};

// Runs act under the lock and announces what it did to the bus afterwards: receivers call back into the
// device.
template <typename Act> auto SimulatedDevice::Body::change(Act act)
{
    QList<BusChange> changes;
    const auto result = [&] {
        const QMutexLocker lock(&mutex);
        const auto result = act();
        changes.swap(busChanges);
        return result;
    }();
    announce(changes);
    return result;
}

} // namespace rig
