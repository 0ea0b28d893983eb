// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/SimulatedDeviceBody.h"

namespace rig {

namespace {
constexpr std::chrono::milliseconds kBootTime{200};
constexpr std::chrono::milliseconds kEnumerationTime{300}; // from running, with a cable in, to being found
} // namespace

SimulatedChip *SimulatedDevice::Body::atPath(const QString &path)
{
    for (SimulatedChip &chip : chips) {
        if (chip.isOnBus() && chip.face().path == path)
            return &chip;
    }
    return nullptr;
}

void SimulatedDevice::Body::announce(const QList<BusChange> &changes)
{
    for (const BusChange &change : changes) {
        journal.record(QStringLiteral("device"),
                       QStringLiteral("%1 interface %2, product ID %3")
                           .arg(nameOf(change.chip).toUpper(),
                                change.appeared ? QStringLiteral("appeared") : QStringLiteral("left"))
                           .arg(change.productId, 4, 16, QLatin1Char('0')));
        if (change.appeared)
            Q_EMIT device.interfaceAppeared(change.chip, change.productId);
        else
            Q_EMIT device.interfaceLeft(change.chip, change.productId);
    }
    Q_EMIT device.changed();
}

void SimulatedDevice::Body::leave(SimulatedChip &chip)
{
    if (!chip.isOnBus())
        return;
    chip.leave();
    busChanges.append({chip.identity().chip, chip.face().productId, false});
}

void SimulatedDevice::Body::appear(SimulatedChip &chip)
{
    chip.appear(appeared++, journal.now());
    if (appearances.size() == kAppearancesKept)
        appearances.removeFirst();
    appearances.append(chip.face());
    busChanges.append({chip.identity().chip, chip.face().productId, true});
}

void SimulatedDevice::Body::later(SimulatedChip &chip, std::chrono::milliseconds delay,
                                  void (Body::*step)(SimulatedChip &))
{
    chip.setDueStep(++steps);
    thread.after(delay, [weak = weak_from_this(), which = chip.identity().chip, number = steps, step] {
        const auto body = weak.lock();
        if (!body)
            return;
        body->change([&] {
            SimulatedChip &chip = body->at(which);
            if (chip.dueStep() == number)
                (body.get()->*step)(chip);
            return true;
        });
    });
}

void SimulatedDevice::Body::restart(SimulatedChip &chip, std::chrono::milliseconds delay)
{
    chip.stop();
    later(chip, delay, &Body::boot);
}

void SimulatedDevice::Body::restartIntoBootLoader(SimulatedChip &chip, std::chrono::milliseconds delay)
{
    chip.stop();
    later(chip, delay, &Body::stayInBootLoader);
}

void SimulatedDevice::Body::boot(SimulatedChip &chip)
{
    chip.boot();
    later(chip, kEnumerationTime, &Body::enumerate);
}

void SimulatedDevice::Body::stayInBootLoader(SimulatedChip &chip)
{
    chip.stayInBootLoader();
    later(chip, kEnumerationTime, &Body::enumerate);
}

void SimulatedDevice::Body::enumerate(SimulatedChip &chip)
{
    if (chip.isPlugged() && !chip.isOnBus())
        appear(chip);
}

// The first cable powers both chips. A second one only makes a chip that runs already show itself; one that
// does not run is reset by it.
void SimulatedDevice::Body::powerUp(SimulatedChip &plugged, bool wasDark)
{
    if (wasDark) {
        for (SimulatedChip &chip : chips)
            restart(chip, kBootTime);
    } else if (plugged.state() == ChipState::Running) {
        later(plugged, kBootTime + kEnumerationTime, &Body::enumerate);
    } else {
        restart(plugged, kBootTime);
    }
}

void SimulatedDevice::Body::install(Chip which, const QByteArray &flash)
{
    change([&] {
        SimulatedChip &chip = at(which);
        const ChipState former = chip.state();
        chip.setFlash(flash);
        chip.setDueStep(++steps);
        chip.boot();
        if (chip.state() != former) {
            leave(chip);
            if (chip.isPlugged())
                appear(chip);
        }
        return true;
    });
}

} // namespace rig
