// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/SimulatedChip.h"

namespace rig {

QVersionNumber SimulatedChip::runningVersion() const
{
    return m_state == ChipState::Running ? m_version : QVersionNumber();
}

void SimulatedChip::boot()
{
    const auto firmware = readImage(m_flash);
    const bool own = firmware && firmware->model == m_identity->model && firmware->chip == m_identity->chip;
    m_version = own ? firmware->version : QVersionNumber();
    m_state = own ? ChipState::Running : ChipState::BootLoader;
}

void SimulatedChip::stayInBootLoader()
{
    m_state = ChipState::BootLoader;
}

bool SimulatedChip::program(int offset, const QByteArray &bytes)
{
    if (offset < 0 || offset > kFlashSize - bytes.size())
        return false;
    if (m_flash.size() < offset + bytes.size())
        m_flash.append(QByteArray(offset + bytes.size() - m_flash.size(), char(0xFF)));
    m_flash.replace(offset, bytes.size(), bytes);
    return true;
}

void SimulatedChip::appear(int serial, std::chrono::milliseconds at)
{
    m_onBus = true;
    const int productId = m_state == ChipState::Running ? m_identity->normalPid : m_identity->bootLoaderPid;
    const QString path = QStringLiteral("sim#vid_%1&pid_%2#%3")
                             .arg(kVendorId, 4, 16, QLatin1Char('0'))
                             .arg(productId, 4, 16, QLatin1Char('0'))
                             .arg(serial);
    m_face = {m_identity->chip, productId, path, at};
}

} // namespace rig
