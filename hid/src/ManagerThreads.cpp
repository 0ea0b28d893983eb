// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the library's threads do: the sender and the receiver on the open device, the bus watch on everything
// else. Every signal is emitted from here, and never under a lock: a slot that is called directly may call
// anything.
#include "ManagerCore.h"

#include "FamilyConstants.h"
#include "LoggingCategory.h"
#include "ReportFraming.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QAbstractEventDispatcher>
#include <QThread>

#include <algorithm>
#include <utility>

namespace HIDCommunicator {

namespace {

bool onBus(const QList<HidDeviceInfo> &devices, const HidDeviceInfo &wanted)
{
    return std::any_of(devices.cbegin(), devices.cend(),
                       [&](const HidDeviceInfo &device) { return device.path == wanted.path; });
}

} // namespace

void ManagerCore::startSender()
{
    startWorker(m_sender, &ManagerCore::sendReports);
}

void ManagerCore::startReceiver()
{
    startWorker(m_receiver, &ManagerCore::receiveReports);
}

void ManagerCore::startWorker(StoppableThread &thread,
                              void (ManagerCore::*work)(const Stopped &, DeviceLink &))
{
    const std::lock_guard lock(m_mutex);
    if (!m_link)
        return;
    thread.start([this, work, link = m_link](const Stopped &stopped) { (this->*work)(stopped, *link); });
}

void ManagerCore::send(const QByteArray &report)
{
    if (const auto whole = outputReport(report))
        m_queue.push(*whole);
    else
        qCWarning(hidCategory, "[HID] not a report of the device, not queued: %d bytes", int(report.size()));
}

void ManagerCore::sendReports(const Stopped &stopped, DeviceLink &link)
{
    while (const auto report = m_queue.take(stopped)) {
        if (!link.connection().write(*report)) {
            loseLink(link);
            return;
        }
    }
}

void ManagerCore::receiveReports(const Stopped &stopped, DeviceLink &link)
{
    QByteArray report;
    while (!stopped) {
        const HidConnection::ReadResult result = link.connection().read(report, HidConnection::kNoLimit);
        if (result == HidConnection::ReadResult::Gone) {
            loseLink(link);
            return;
        }
        if (stopped || result != HidConnection::ReadResult::Report)
            continue;
        if (const auto payload = inputPayload(report))
            Q_EMIT m_manager.blockReceiveData(*payload);
    }
}

void ManagerCore::scan(const Stopped &stopped)
{
    // Taken before the look at the bus: a device opened after it need not be on the list.
    Link link = currentLink();
    const auto devices = m_transport->enumerate(kFamilyVendorId);
    if (!std::exchange(m_blind, !devices) && !devices)
        qCWarning(hidCategory, "[HID] the system does not list its devices, asking again with the next scan");
    if (devices && link && !onBus(*devices, link->device()))
        loseLink(*link);
    link.reset();
    announce();
    if (stopped || !devices)
        return;

    QStringList paths;
    QList<int> productIds;
    splitList(*devices, paths, productIds);
    Q_EMIT m_manager.deviceListChanged(paths, productIds);
}

void ManagerCore::splitList(const QList<HidDeviceInfo> &devices, QStringList &paths, QList<int> &productIds)
{
    paths.clear();
    productIds.clear();
    for (const HidDeviceInfo &device : devices) {
        paths.append(device.path);
        productIds.append(device.productId);
    }
}

void ManagerCore::announce()
{
    std::unique_lock lock(m_mutex);
    while (!m_announcements.empty()) {
        const Announcement announcement = m_announcements.front();
        m_announcements.pop_front();
        lock.unlock();
        emitStatus(announcement);
        lock.lock();
    }
}

void ManagerCore::emitStatus(const Announcement &announcement)
{
    Q_EMIT m_manager.blockHidConnetStatus(announcement.status);
    if (announcement.status != kStatusGone)
        return;
    const quint64 loss = announcement.loss;
    if (!runInManagersLoop([this, loss] { lossDelivered(loss); }))
        lossDelivered(loss);
}

void ManagerCore::lossDelivered(quint64 loss)
{
    {
        const std::lock_guard lock(m_mutex);
        m_deliveredLosses = std::max(m_deliveredLosses, loss);
    }
    // The device may be back already, and was refused so far.
    m_watch.requestScan();
}

/// Queues \a action behind every event that the manager's thread has not processed yet. False when that
/// thread has no event loop.
bool ManagerCore::runInManagersLoop(std::function<void()> action)
{
    if (!QAbstractEventDispatcher::instance(m_manager.thread()))
        return false;
    return QMetaObject::invokeMethod(&m_manager, std::move(action), Qt::QueuedConnection);
}

} // namespace HIDCommunicator
