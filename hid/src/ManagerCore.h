// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "BusWatch.h"
#include "DeviceLink.h"
#include "SendQueue.h"
#include "StoppableThread.h"

#include <HIDCommunicator/HidTransport.h>

#include <QStringList>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace HIDCommunicator {

class OrvikHIDManager;

/// The state behind OrvikHIDManager and its three threads. One mutex guards the state; it is never held while
/// a signal is emitted, a thread is waited for or the transport is called. Nothing of it is ever destroyed: a
/// thread that hangs in a system call may outlive every stop.
class ManagerCore {
public:
    ManagerCore(OrvikHIDManager &manager, std::unique_ptr<HidTransport> transport);

    void acquire();
    void release();
    void shutDown(); ///< as if the last release() had come

    void listDevices(QStringList &paths, QList<int> &productIds) const;
    bool open(const QString &path, int vendorId, int productId);
    bool close();
    bool isConnected() const;

    void startSender();
    void startReceiver();
    void stopSender();
    void stopReceiver();

    void send(const QByteArray &report);

private:
    using Link = std::shared_ptr<DeviceLink>;
    using Stopped = std::atomic<bool>;

    /// A status to be emitted by the bus watch. Losses are numbered from 1.
    struct Announcement {
        int status = 0;
        quint64 loss = 0;
    };

    // ManagerCore.cpp: users, opening, the three ends of a link
    enum class Opening { Refused, AlreadyOpen, Begun };
    Opening beginOpening(const QString &path, int vendorId, int productId);
    Link openLink(const QString &path, int vendorId, int productId);
    bool endOpening(Link link);
    Link currentLink() const;
    Link detachLinkLocked();
    static void wakeReceiver(const Link &link);
    void wakeWorkers(const Link &link);
    void waitForWorkers(Deadline deadline);
    void shutDown(std::unique_lock<std::mutex> lock);
    void loseLink(const DeviceLink &link);

    // ManagerThreads.cpp: what the threads do
    void startWorker(StoppableThread &thread, void (ManagerCore::*work)(const Stopped &, DeviceLink &));
    void sendReports(const Stopped &stopped, DeviceLink &link);
    void receiveReports(const Stopped &stopped, DeviceLink &link);
    void scan(const Stopped &stopped);
    static void splitList(const QList<HidDeviceInfo> &devices, QStringList &paths, QList<int> &productIds);
    void announce();
    void emitStatus(const Announcement &announcement);
    void lossDelivered(quint64 loss);
    bool runInManagersLoop(std::function<void()> action);

    OrvikHIDManager &m_manager;
    std::unique_ptr<HidTransport> m_transport;
    SendQueue m_queue;
    WaitableCount m_openHandles;
    StoppableThread m_sender;
    StoppableThread m_receiver;
    BusWatch m_watch;
    bool m_blind = false; // the bus watch's: its last look at the bus has failed

    mutable std::mutex m_mutex;
    int m_users = 0;
    bool m_opening = false;
    Link m_link;
    std::deque<Announcement> m_announcements;
    quint64 m_losses = 0;
    quint64 m_deliveredLosses = 0;
};

} // namespace HIDCommunicator
