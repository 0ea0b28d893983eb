// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/trace/TappedTransport.h"

#include <QElapsedTimer>
#include <QHash>

#include <mutex>
#include <optional>
#include <utility>

namespace probe {

namespace {

using HIDCommunicator::HidConnection;
using HIDCommunicator::HidDeviceInfo;
using HIDCommunicator::HidTransport;
using Kind = TraceEvent::Kind;

/// What the transport and its connections share: who is attached under which number, and the clock.
class Listener {
public:
    explicit Listener(TraceSink sink)
        : m_sink(std::move(sink))
    {
        m_clock.start();
    }

    void compare(const QList<HidDeviceInfo> &found)
    {
        const std::lock_guard lock(m_mutex);
        QHash<QString, int> before = std::exchange(m_attached, {});
        for (const HidDeviceInfo &device : found) {
            if (const int number = before.take(device.path))
                m_attached.insert(device.path, number);
        }
        for (const int number : std::as_const(before))
            tellLocked({{}, Kind::Unplug, number, 0, 0, {}});
        for (const HidDeviceInfo &device : found) {
            if (m_attached.contains(device.path))
                continue;
            m_attached.insert(device.path, ++m_lastNumber);
            tellLocked({{}, Kind::Plug, m_lastNumber, device.vendorId, device.productId, {}});
        }
    }

    int numberOf(const QString &path) const
    {
        const std::lock_guard lock(m_mutex);
        return m_attached.value(path);
    }

    /// Leaves out what comes from a device that has left already: a report may have been under way.
    void tell(Kind kind, int number, const QByteArray &report = {})
    {
        const std::lock_guard lock(m_mutex);
        if (std::find(m_attached.cbegin(), m_attached.cend(), number) != m_attached.cend())
            tellLocked({{}, kind, number, 0, 0, report});
    }

private:
    void tellLocked(TraceEvent event)
    {
        event.time = std::chrono::milliseconds(m_clock.elapsed());
        m_sink(event);
    }

    mutable std::mutex m_mutex;
    TraceSink m_sink;
    QElapsedTimer m_clock;
    QHash<QString, int> m_attached;
    int m_lastNumber = 0;
};

class TappedConnection : public HidConnection {
public:
    TappedConnection(std::unique_ptr<HidConnection> connection, std::shared_ptr<Listener> listener,
                     int number)
        : m_connection(std::move(connection))
        , m_listener(std::move(listener))
        , m_number(number)
    {
    }

    ReadResult read(QByteArray &report, std::chrono::milliseconds timeout) override
    {
        const ReadResult result = m_connection->read(report, timeout);
        if (result == ReadResult::Report && !report.isEmpty())
            m_listener->tell(Kind::In, m_number, report);
        return result;
    }

    void interruptRead() override { m_connection->interruptRead(); }

    bool write(const QByteArray &report) override
    {
        m_listener->tell(Kind::Out, m_number, report);
        return m_connection->write(report);
    }

private:
    std::unique_ptr<HidConnection> m_connection;
    std::shared_ptr<Listener> m_listener;
    int m_number;
};

class TappedTransport : public HidTransport {
public:
    TappedTransport(Bus bus, TraceSink sink)
        : m_bus(std::move(bus))
        , m_listener(std::make_shared<Listener>(std::move(sink)))
    {
    }

    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override
    {
        // One look at a time, or a late one would bring a device back that an earlier one saw leaving.
        const std::lock_guard lock(m_lookMutex);
        const auto found = m_bus.transport->enumerate(vendorId);
        if (found)
            m_listener->compare(*found);
        return found;
    }

    std::unique_ptr<HidConnection> open(const QString &path) override
    {
        const int number = m_listener->numberOf(path);
        const bool denied = m_bus.isDenied(path);
        auto connection = m_bus.transport->open(path);
        if (!connection) {
            m_listener->tell(denied ? Kind::Denied : Kind::Refused, number);
            return nullptr;
        }
        m_listener->tell(Kind::Open, number);
        return std::make_unique<TappedConnection>(std::move(connection), m_listener, number);
    }

    bool waitForHotplug(std::chrono::milliseconds timeout) override
    {
        return m_bus.transport->waitForHotplug(timeout);
    }

    void interruptHotplugWait() override { m_bus.transport->interruptHotplugWait(); }

private:
    Bus m_bus;
    std::shared_ptr<Listener> m_listener;
    std::mutex m_lookMutex;
};

} // namespace

Bus tap(Bus bus, TraceSink sink)
{
    auto isDenied = bus.isDenied;
    return {std::make_unique<TappedTransport>(std::move(bus), std::move(sink)), std::move(isDenied)};
}

} // namespace probe
