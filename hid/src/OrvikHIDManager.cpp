// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include <HIDCommunicator/OrvikHIDManager.h>

#include "ManagerCore.h"

#include <HIDCommunicator/HidTransport.h>

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <mutex>
#include <utility>

namespace HIDCommunicator {

namespace {

struct TransportSlot {
    std::mutex mutex;
    std::unique_ptr<HidTransport> transport;
    bool taken = false;
};

TransportSlot &transportSlot()
{
    static TransportSlot slot;
    return slot;
}

std::unique_ptr<HidTransport> takeTransport()
{
    TransportSlot &slot = transportSlot();
    const std::lock_guard lock(slot.mutex);
    slot.taken = true;
    return slot.transport ? std::move(slot.transport) : makeDefaultTransport();
}

// Not every host releases what it acquired. The threads end with the application object, or, where that is
// never destroyed, with the process.
std::atomic<ManagerCore *> runningCore{nullptr};
std::atomic<bool> endsWithApplication{false};

void stopThreads()
{
    if (ManagerCore *core = runningCore)
        core->shutDown();
}

void stopWithApplication()
{
    endsWithApplication = false;
    stopThreads();
}

struct ExitGuard {
    ~ExitGuard() { stopThreads(); }
};

} // namespace

bool installTransport(std::unique_ptr<HidTransport> transport)
{
    TransportSlot &slot = transportSlot();
    const std::lock_guard lock(slot.mutex);
    if (slot.taken)
        return false;
    slot.transport = std::move(transport);
    return true;
}

OrvikHIDManager *OrvikHIDManager::instance()
{
    // Never destroyed: a thread that hangs in a system call may still be there when the process runs its exit
    // handlers.
    static auto *const manager = new OrvikHIDManager;
    static const ExitGuard guard;
    return manager;
}

OrvikHIDManager::OrvikHIDManager()
    : m_core(std::make_unique<ManagerCore>(*this, takeTransport()))
{
    runningCore = m_core.get();
    if (const QCoreApplication *application = QCoreApplication::instance())
        moveToThread(application->thread());
}

OrvikHIDManager::~OrvikHIDManager() = default;

void OrvikHIDManager::acquire()
{
    if (!endsWithApplication.exchange(true))
        qAddPostRoutine(stopWithApplication);
    m_core->acquire();
}

void OrvikHIDManager::release()
{
    m_core->release();
}

void OrvikHIDManager::getOrvikHIDListPath(QStringList &paths, QList<int> &productIds)
{
    m_core->listDevices(paths, productIds);
}

bool OrvikHIDManager::openHIDHandle(const QString &path, int vendorId, int productId, int)
{
    return m_core->open(path, vendorId, productId);
}

void OrvikHIDManager::createOrvikSendDataThread()
{
    m_core->startSender();
}

void OrvikHIDManager::createOrvikReceiveDataThread()
{
    m_core->startReceiver();
}

void OrvikHIDManager::closeOrvikSendDataThread()
{
    m_core->stopSender();
}

void OrvikHIDManager::closeOrvikReceiveDataThread()
{
    m_core->stopReceiver();
}

bool OrvikHIDManager::getConnected() const
{
    return m_core->isConnected();
}

bool OrvikHIDManager::disconnectDevice(int)
{
    return m_core->close();
}

void OrvikHIDManager::DC_AddSendData(QByteArray report)
{
    m_core->send(report);
}

} // namespace HIDCommunicator
