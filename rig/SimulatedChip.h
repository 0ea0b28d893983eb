// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FirmwareImage.h"
#include "rig/SimulatedDevice.h"

namespace rig {

constexpr int kFlashSize = 512 * 1024;

/// One chip: what is in its flash, what it runs, and its place on the bus. Not locked; the device does that.
class SimulatedChip {
public:
    explicit SimulatedChip(const ChipIdentity &identity)
        : m_identity(&identity)
    {
    }

    const ChipIdentity &identity() const { return *m_identity; }
    ChipState state() const { return m_state; }
    QVersionNumber runningVersion() const;
    const QByteArray &flash() const { return m_flash; }
    bool canBeFlashed() const { return m_onBus && m_state == ChipState::BootLoader; }

    /// Runs the firmware when the flash holds an intact one of this chip's own, else the boot loader.
    void boot();
    void stayInBootLoader();
    void stop() { m_state = ChipState::Restarting; }

    void setFlash(const QByteArray &flash) { m_flash = flash; }
    bool program(int offset, const QByteArray &bytes); ///< false when it does not fit

    bool isPlugged() const { return m_plugged; }
    void setPlugged(bool plugged) { m_plugged = plugged; }
    bool isOnBus() const { return m_onBus; }
    const BusInterface &face() const { return m_face; } ///< the latest one, also when it has left the bus
    void appear(int serial, std::chrono::milliseconds at);
    void leave() { m_onBus = false; }

    /// The number of the step that is due, if one is: a delayed step that finds another number is out of
    /// date.
    int dueStep() const { return m_dueStep; }
    void setDueStep(int number) { m_dueStep = number; }

private:
    const ChipIdentity *m_identity;
    QByteArray m_flash;
    QVersionNumber m_version; // of the firmware that started last
    ChipState m_state = ChipState::BootLoader;
    bool m_plugged = false;
    bool m_onBus = false;
    BusInterface m_face{};
    int m_dueStep = 0;
};

} // namespace rig
