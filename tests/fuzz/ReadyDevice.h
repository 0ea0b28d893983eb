// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoader.h"
#include "rig/FirmwareImage.h"
#include "rig/SimulatedDeviceBody.h"

/// A simulated device for targets that talk to its chips: whatever a chip takes its time for has happened at
/// once. Reaches into the device, which has no other way to be made so.
class ReadyDevice {
public:
    ReadyDevice()
        : m_device(m_thread, m_faults, m_journal)
    {
    }

    rig::SimulatedDevice &device() { return m_device; }
    rig::FaultBoard &faults() { return m_faults; }
    rig::Journal &journal() { return m_journal; }
    rig::RigThread &thread() { return m_thread; }

    /// Both cables in; each chip runs a firmware or is in its boot loader.
    void reset(rig::Model model, bool pcRuns, bool otgRuns)
    {
        m_faults.clearAll();
        m_journal.m_entries.clear();
        const QMutexLocker lock(&body().mutex);
        body().appearances.clear();
        body().appeared = 0;
        body().model = model;
        setUp(rig::Chip::Pc, pcRuns);
        setUp(rig::Chip::Otg, otgRuns);
        body().busChanges.clear();
    }

    /// A chip that restarts is back. \a restarts: how many images were taken to the end before.
    void bringBack(const rig::BootLoader &bootLoader, rig::Chip which, int restarts)
    {
        const QMutexLocker lock(&body().mutex);
        rig::SimulatedChip &chip = body().at(which);
        if (chip.state() != rig::ChipState::Restarting)
            return;
        if (bootLoader.restarts() > restarts)
            chip.boot();
        else
            chip.stayInBootLoader();
        appear(chip);
        body().busChanges.clear();
    }

private:
    rig::SimulatedDevice::Body &body() { return *m_device.m_body; }

    void setUp(rig::Chip which, bool runs)
    {
        const rig::Model model = body().model;
        const QByteArray &image = imageOf(model, which);
        rig::SimulatedChip &chip = body().at(which);
        chip = rig::SimulatedChip(rig::identityOf(model, which));
        chip.setPlugged(true);
        if (runs)
            chip.setFlash(image);
        chip.boot();
        appear(chip);
    }

    /// A step that is under way on the rig's thread is out of date then.
    void appear(rig::SimulatedChip &chip)
    {
        chip.setDueStep(++body().steps);
        if (chip.isPlugged())
            body().appear(chip);
    }

    /// As small as images get: there are thousands a second to be checked.
    static const QByteArray &imageOf(rig::Model model, rig::Chip chip)
    {
        static QMap<std::pair<rig::Model, rig::Chip>, QByteArray> images;
        QByteArray &image = images[{model, chip}];
        if (image.isEmpty())
            image = rig::buildImage({model, chip, QVersionNumber(1, 2, 3)}, 16);
        return image;
    }

    rig::RigThread m_thread;
    rig::FaultBoard m_faults;
    rig::Journal m_journal;
    rig::SimulatedDevice m_device;
};
