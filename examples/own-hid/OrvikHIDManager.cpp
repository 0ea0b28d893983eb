// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "OrvikHIDManager.h"

#include <utility>

namespace HIDCommunicator {

OrvikHIDManager *OrvikHIDManager::instance()
{
    static auto *manager = new OrvikHIDManager;
    return manager;
}

// A real one watches the bus from here on, and tells of each scan.
void OrvikHIDManager::acquire()
{
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT deviceListChanged({QStringLiteral("own:vid_352f&pid_000e")}, {0x000E}); },
        Qt::QueuedConnection);
}

bool OrvikHIDManager::openHIDHandle(const QString &, int, int, int)
{
    m_open = true;
    Q_EMIT blockHidConnetStatus(0);
    return true;
}

bool OrvikHIDManager::disconnectDevice(int)
{
    return std::exchange(m_open, false);
}

void OrvikHIDManager::getOrvikHIDListPath(QStringList &paths, QList<int> &productIds)
{
    paths = QStringList{QStringLiteral("own:vid_352f&pid_000e")};
    productIds = {0x000E};
}

// What comes back from the device goes out with blockReceiveData().
void OrvikHIDManager::DC_AddSendData(QByteArray report)
{
    m_sent.append(report);
}
bool OrvikHIDManager::getConnected() const
{
    return m_open;
}
void OrvikHIDManager::release() { }
void OrvikHIDManager::createOrvikSendDataThread() { }
void OrvikHIDManager::createOrvikReceiveDataThread() { }
void OrvikHIDManager::closeOrvikSendDataThread() { }
void OrvikHIDManager::closeOrvikReceiveDataThread() { }

} // namespace HIDCommunicator
