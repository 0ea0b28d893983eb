// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Rig.h"

#include "rig/SimulatedBus.h"

namespace rig {

Rig::Rig()
    : m_device(m_thread, m_faults, m_journal)
    , m_server(m_thread, m_faults, m_journal)
    , m_bootLoader(m_thread, m_device, m_faults, m_journal)
    , m_toolFile(m_faults, m_journal)
{
}

Rig::~Rig() = default;

bool Rig::startBus(Bus bus, QString *error)
{
    if (bus == Bus::Usb) {
        m_usb = std::make_unique<UsbBus>(m_device, m_bootLoader, m_journal);
        return m_usb->start(error);
    }
    if (HIDCommunicator::installTransport(makeSimulatedBus(m_device)))
        return true;
    *error = QStringLiteral("the HID library is already in use with another bus");
    return false;
}

bool Rig::start(QString *error, Bus bus)
{
    QString trouble;
    if (startBus(bus, &trouble)) {
        if (!m_server.start())
            trouble = QStringLiteral("no free port for the update server");
        else if (!m_bootLoader.start())
            trouble = QStringLiteral("no local socket for the flashing tool");
        else
            m_server.becomeApplicationProxy();
    }
    if (error)
        *error = trouble;
    return trouble.isEmpty();
}

} // namespace rig
