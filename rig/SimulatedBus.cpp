// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/SimulatedBus.h"

#include "rig/SimulatedDevice.h"

#include <QDeadlineTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QQueue>
#include <QWaitCondition>

#include <optional>
#include <utility>

namespace rig {

namespace {

using HIDCommunicator::HidConnection;
using HIDCommunicator::HidDeviceInfo;
using HIDCommunicator::HidTransport;
using std::chrono::milliseconds;

// What the bus and its connections share. The mutex is held while the device is called, so that the device
// cannot go away during a call; nothing the device does in such a call comes back here.
struct Hub {
    QMutex mutex;
    QWaitCondition news; // QWaitCondition, because others lose count when the clock is sped up
    SimulatedDevice *device = nullptr;
    int hotplugs = 0;
    bool interrupted = false;

    void announce(bool vanished)
    {
        const QMutexLocker lock(&mutex);
        if (vanished)
            device = nullptr;
        ++hotplugs;
        news.wakeAll();
    }
};

class Connection : public HidConnection {
public:
    Connection(std::shared_ptr<Hub> hub, const QString &path)
        : m_hub(std::move(hub))
        , m_path(path)
    {
    }

    ReadResult read(QByteArray &report, milliseconds timeout) override
    {
        const QDeadlineTimer deadline(timeout);
        const QMutexLocker lock(&m_hub->mutex);
        while (m_replies.isEmpty()) {
            if (!isAttached())
                return ReadResult::Gone;
            if (std::exchange(m_interrupted, false))
                return ReadResult::Timeout;
            if (!m_hub->news.wait(&m_hub->mutex, deadline) && m_replies.isEmpty())
                return isAttached() ? ReadResult::Timeout : ReadResult::Gone;
        }
        report = m_replies.dequeue();
        return ReadResult::Report;
    }

    void interruptRead() override
    {
        const QMutexLocker lock(&m_hub->mutex);
        m_interrupted = true;
        m_hub->news.wakeAll();
    }

    bool write(const QByteArray &report) override
    {
        const QMutexLocker lock(&m_hub->mutex);
        if (!isAttached())
            return false;
        m_replies.append(m_hub->device->answer(m_path, report));
        m_hub->news.wakeAll();
        return true;
    }

private:
    bool isAttached() const { return m_hub->device && m_hub->device->isOnBus(m_path); }

    std::shared_ptr<Hub> m_hub;
    QString m_path;
    QQueue<QByteArray> m_replies;
    bool m_interrupted = false;
};

class Bus : public HidTransport {
public:
    explicit Bus(SimulatedDevice &device)
        : m_hub(std::make_shared<Hub>())
    {
        m_hub->device = &device;
        const auto wake = [hub = m_hub] { hub->announce(false); };
        QObject::connect(&device, &SimulatedDevice::interfaceAppeared, wake);
        QObject::connect(&device, &SimulatedDevice::interfaceLeft, wake);
        QObject::connect(&device, &SimulatedDevice::vanishing, [hub = m_hub] { hub->announce(true); });
    }

    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override
    {
        const QMutexLocker lock(&m_hub->mutex);
        QList<HidDeviceInfo> found;
        if (!m_hub->device || vendorId != kVendorId)
            return found;
        for (const BusInterface &face : m_hub->device->interfaces())
            found.append({face.path, kVendorId, face.productId});
        return found;
    }

    std::unique_ptr<HidConnection> open(const QString &path) override
    {
        const QMutexLocker lock(&m_hub->mutex);
        if (!m_hub->device || !m_hub->device->mayBeOpened(path))
            return nullptr;
        return std::make_unique<Connection>(m_hub, path);
    }

    bool waitForHotplug(milliseconds timeout) override
    {
        const QDeadlineTimer deadline(timeout);
        const QMutexLocker lock(&m_hub->mutex);
        while (m_seen == m_hub->hotplugs && !m_hub->interrupted) {
            if (!m_hub->news.wait(&m_hub->mutex, deadline))
                break;
        }
        // An interruption hides no plug: the next wait tells of it.
        if (std::exchange(m_hub->interrupted, false))
            return false;
        return std::exchange(m_seen, m_hub->hotplugs) != m_hub->hotplugs;
    }

    void interruptHotplugWait() override
    {
        const QMutexLocker lock(&m_hub->mutex);
        m_hub->interrupted = true;
        m_hub->news.wakeAll();
    }

private:
    std::shared_ptr<Hub> m_hub;
    int m_seen = 0; // hotplug events that waitForHotplug() has told of
};

} // namespace

std::unique_ptr<HidTransport> makeSimulatedBus(SimulatedDevice &device)
{
    return std::make_unique<Bus>(device);
}

} // namespace rig
