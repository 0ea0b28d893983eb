// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FaultBoard.h"
#include "rig/SimulatedDevice.h"

#include <QByteArray>

#include <atomic>
#include <chrono>

namespace rig {

/// What a flashing tool can have one chip do, whichever wire its reports take. Thread-safe; none waits.
class BootLoader {
public:
    /// How long a chip takes to erase its flash; whoever passes erase() on answers after that.
    static constexpr std::chrono::milliseconds kEraseTime{800};

    BootLoader(SimulatedDevice &device, FaultBoard &faults, Chip chip);

    /// Sends a running chip into its boot loader. False when it is not on the bus, or is not where the tool
    /// says.
    bool enter(bool saidToBeThere);
    bool isReady() const; ///< the chip is on the bus in its boot loader
    bool erase(int imageSize);
    bool write(int offset, const QByteArray &block);
    QByteArray digest() const; ///< SHA-256 of what the flash holds, hexadecimal
    bool restart();

    int restarts() const { return m_restarts; } ///< how many images were taken to the end

private:
    bool isOnBus() const;

    SimulatedDevice &m_device;
    FaultBoard &m_faults;
    Chip m_chip;
    std::atomic<int> m_imageSize{0};
    std::atomic<int> m_restarts{0};
};

} // namespace rig
