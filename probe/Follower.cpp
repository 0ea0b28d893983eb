// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Follower.h"

#include "device/ControlMessages.h"
#include "device/ModelTable.h"
#include "device/Report.h"
#include "probe/Products.h"

#include <HIDCommunicator/OrvikHIDManager.h>

namespace probe {

namespace {

using HIDCommunicator::OrvikHIDManager;

OrvikHIDManager &manager()
{
    return *OrvikHIDManager::instance();
}

bool saysNormalFirmware(const QByteArray &reply)
{
    if (Report::operation(reply) != quint8(ControlOperation::RandomRead))
        return false;
    for (const Report::RegisterValue &entry : Report::randomReadEntries(reply)) {
        if (entry.address == DeviceRegister::kUpgradeMode)
            return entry.value == 0;
    }
    return false;
}

} // namespace

Follower::Follower(Manner manner)
    : m_manner(manner)
{
    manager().acquire();
    connect(&manager(), &OrvikHIDManager::deviceListChanged, this, &Follower::follow, Qt::QueuedConnection);
    connect(&manager(), &OrvikHIDManager::blockReceiveData, this, &Follower::takeReport,
            Qt::QueuedConnection);
    connect(&manager(), &OrvikHIDManager::blockHidConnetStatus, this, &Follower::takeStatus,
            Qt::QueuedConnection);
}

Follower::~Follower()
{
    manager().release();
}

void Follower::follow(const QStringList &paths, const QList<int> &productIds)
{
    // Of several interfaces of one device those that can be used come last.
    for (qsizetype i = paths.size() - 1; i >= 0 && !manager().getConnected(); --i) {
        if (!productOf(productIds.at(i)).answers
            || !manager().openHIDHandle(paths.at(i), QuillonFirmwareUpgrade::kVendorId, productIds.at(i), 0))
            continue;
        m_opened = true;
        manager().createOrvikReceiveDataThread();
        manager().createOrvikSendDataThread();
        if (m_manner == Manner::Asking)
            manager().DC_AddSendData(
                ControlMessages::getInstance()->randomRead(DeviceRegister::kUpgradeMode));
    }
}

void Follower::takeReport(const QByteArray &report)
{
    if (m_manner != Manner::Asking || !saysNormalFirmware(report))
        return;
    for (const quint16 start : {DeviceRegister::kPcVersion, DeviceRegister::kOtgVersion})
        manager().DC_AddSendData(
            ControlMessages::getInstance()->continuousRead(start, DeviceRegister::kVersionLength));
}

void Follower::takeStatus(int status)
{
    constexpr int kGone = 1;
    if (status != kGone)
        return;
    manager().closeOrvikSendDataThread();
    manager().closeOrvikReceiveDataThread();
}

} // namespace probe
