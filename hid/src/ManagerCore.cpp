// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Who uses the library, who may open the device, and how a link to it ends: by close(), by the last
// release(), or by loseLink() from whichever thread first finds the device gone. Only the last of these is
// announced.
//
// A loss counts as delivered when the manager's event loop has come past it. Until then nothing is opened:
// callers answer a loss by closing the send and receive threads, and would close those of the next device.
#include "ManagerCore.h"

#include "FamilyConstants.h"

#include <algorithm>
#include <utility>

namespace HIDCommunicator {

namespace {

using namespace std::chrono_literals;

/// The longest a caller waits for threads to end and a handle to be closed. Only a thread that hangs in a
/// system call or in somebody's slot takes that long.
constexpr auto kStopLimit = 80ms;

bool samePath(const QString &left, const QString &right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

bool isDevice(const HidDeviceInfo &device, const QString &path, int vendorId, int productId)
{
    return device.vendorId == vendorId && device.productId == productId && samePath(device.path, path);
}

} // namespace

ManagerCore::ManagerCore(OrvikHIDManager &manager, std::unique_ptr<HidTransport> transport)
    : m_manager(manager)
    , m_transport(std::move(transport))
    , m_watch(*m_transport,
              {[this] { return isConnected(); }, [this] { announce(); },
               [this](const Stopped &stopped) { scan(stopped); }})
{
}

void ManagerCore::acquire()
{
    {
        const std::lock_guard lock(m_mutex);
        if (++m_users == 1)
            m_watch.start();
    }
    // The first scan waits for the caller's event loop: callers connect to the signals after they have
    // acquired.
    if (!runInManagersLoop([this] { m_watch.requestScan(); }))
        m_watch.requestScan();
}

void ManagerCore::release()
{
    std::unique_lock lock(m_mutex);
    if (m_users == 1)
        shutDown(std::move(lock));
    else if (m_users > 1)
        --m_users;
}

void ManagerCore::shutDown()
{
    shutDown(std::unique_lock(m_mutex));
}

void ManagerCore::shutDown(std::unique_lock<std::mutex> lock)
{
    m_users = 0;
    m_announcements.clear();
    m_deliveredLosses = m_losses;
    m_queue.clear();
    m_watch.requestStop();
    Link link = detachLinkLocked();
    lock.unlock();

    wakeWorkers(link);
    m_watch.wake();
    const Deadline deadline = deadlineIn(kStopLimit);
    waitForWorkers(deadline);
    link.reset();
    m_watch.waitEnded(deadline);
}

void ManagerCore::listDevices(QStringList &paths, QList<int> &productIds) const
{
    splitList(m_transport->enumerate(kFamilyVendorId).value_or(QList<HidDeviceInfo>()), paths, productIds);
}

bool ManagerCore::open(const QString &path, int vendorId, int productId)
{
    switch (beginOpening(path, vendorId, productId)) {
    case Opening::Refused:
        return false;
    case Opening::AlreadyOpen:
        return true;
    case Opening::Begun:
        break;
    }
    return endOpening(openLink(path, vendorId, productId));
}

ManagerCore::Opening ManagerCore::beginOpening(const QString &path, int vendorId, int productId)
{
    const std::lock_guard lock(m_mutex);
    if (m_users == 0 || m_opening || m_deliveredLosses != m_losses)
        return Opening::Refused;
    if (m_link)
        return isDevice(m_link->device(), path, vendorId, productId) ? Opening::AlreadyOpen
                                                                     : Opening::Refused;
    m_opening = true;
    return Opening::Begun;
}

ManagerCore::Link ManagerCore::openLink(const QString &path, int vendorId, int productId)
{
    if (!m_openHandles.waitZero(deadlineIn(kStopLimit)))
        return nullptr;
    const auto devices = m_transport->enumerate(kFamilyVendorId);
    for (const HidDeviceInfo &device : devices.value_or(QList<HidDeviceInfo>())) {
        if (!isDevice(device, path, vendorId, productId))
            continue;
        if (auto connection = m_transport->open(device.path))
            return std::make_shared<DeviceLink>(device, std::move(connection), m_openHandles);
    }
    return nullptr;
}

bool ManagerCore::endOpening(Link link)
{
    {
        const std::lock_guard lock(m_mutex);
        m_opening = false;
        if (!link || m_users == 0)
            return false;
        m_link = std::move(link);
        m_announcements.push_back({kStatusConnected, 0});
    }
    m_watch.wake();
    return true;
}

bool ManagerCore::close()
{
    Link link;
    {
        const std::lock_guard lock(m_mutex);
        link = detachLinkLocked();
    }
    wakeWorkers(link);
    waitForWorkers(deadlineIn(kStopLimit));
    return link != nullptr;
}

bool ManagerCore::isConnected() const
{
    const std::lock_guard lock(m_mutex);
    return m_link != nullptr;
}

void ManagerCore::stopSender()
{
    m_sender.requestStop();
    m_queue.wake();
    m_sender.waitEnded(deadlineIn(kStopLimit));
}

void ManagerCore::stopReceiver()
{
    m_receiver.requestStop();
    // Without a link there is nothing to interrupt: whoever took it away wakes those that worked on it.
    wakeReceiver(currentLink());
    m_receiver.waitEnded(deadlineIn(kStopLimit));
}

ManagerCore::Link ManagerCore::currentLink() const
{
    const std::lock_guard lock(m_mutex);
    return m_link;
}

/// Ends the link for everybody: the threads that work on it let go when they are woken, the caller when it
/// drops what this returns.
ManagerCore::Link ManagerCore::detachLinkLocked()
{
    m_sender.requestStop();
    m_receiver.requestStop();
    return std::exchange(m_link, nullptr);
}

void ManagerCore::wakeReceiver(const Link &link)
{
    if (link)
        link->connection().interruptRead();
}

/// Follows detachLinkLocked() when the lock is gone.
void ManagerCore::wakeWorkers(const Link &link)
{
    m_queue.wake();
    wakeReceiver(link);
}

void ManagerCore::waitForWorkers(Deadline deadline)
{
    m_sender.waitEnded(deadline);
    m_receiver.waitEnded(deadline);
}

void ManagerCore::loseLink(const DeviceLink &link)
{
    Link gone;
    {
        const std::lock_guard lock(m_mutex);
        if (m_link.get() != &link)
            return;
        gone = detachLinkLocked();
        m_announcements.push_back({kStatusGone, ++m_losses});
    }
    wakeWorkers(gone);
    m_watch.wake();
}

} // namespace HIDCommunicator
