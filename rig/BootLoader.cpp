// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoader.h"

#include "rig/FirmwareImage.h"

#include <algorithm>

namespace rig {

BootLoader::BootLoader(SimulatedDevice &device, FaultBoard &faults, Chip chip)
    : m_device(device)
    , m_faults(faults)
    , m_chip(chip)
{
}

bool BootLoader::isOnBus() const
{
    const QList<BusInterface> faces = m_device.interfaces();
    return std::any_of(faces.begin(), faces.end(),
                       [this](const BusInterface &face) { return face.chip == m_chip; });
}

// A running firmware is asked into the boot loader. Told that the chip is there already, a tool does not ask;
// only where both share a product ID does the firmware understand the boot loader's own greeting.
bool BootLoader::enter(bool saidToBeThere)
{
    const bool isThere = m_device.state(m_chip) == ChipState::BootLoader;
    const ChipIdentity &identity = identityOf(m_device.model(), m_chip);
    const bool sharedId = identity.normalPid == identity.bootLoaderPid;
    if (!isOnBus() || (isThere != saidToBeThere && !sharedId))
        return false;
    return isThere || m_device.enterBootLoader(m_chip);
}

bool BootLoader::isReady() const
{
    return m_device.state(m_chip) == ChipState::BootLoader && isOnBus();
}

bool BootLoader::erase(int imageSize)
{
    m_imageSize = imageSize;
    const bool erased = m_device.erase(m_chip);
    if (erased && m_faults.strikes(Fault::DevicePulledAtErase, m_chip))
        m_device.unplug(m_chip);
    return erased;
}

bool BootLoader::write(int offset, const QByteArray &block)
{
    const bool half = offset + block.size() >= m_imageSize / 2;
    if (half && m_faults.strikes(Fault::DevicePulledAtHalf, m_chip))
        m_device.unplug(m_chip);
    return m_device.write(m_chip, offset, block);
}

QByteArray BootLoader::digest() const
{
    return sha256(m_device.flash(m_chip));
}

bool BootLoader::restart()
{
    if (!m_device.restart(m_chip))
        return false;
    ++m_restarts;
    if (m_faults.strikes(Fault::DevicePulledAtRestart, m_chip))
        m_device.unplug(m_chip);
    return true;
}

} // namespace rig
