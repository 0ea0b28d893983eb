// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/ScriptedTransport.h"

#include "tests/support/DeepCopy.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

using HIDCommunicator::HidConnection;
using HIDCommunicator::HidDeviceInfo;
using HIDCommunicator::HidTransport;

namespace {

constexpr int kFamilyVendorId = 0x352F;

HidDeviceInfo deepCopy(const HidDeviceInfo &device)
{
    return {::deepCopy(device.path), device.vendorId, device.productId};
}

/// A device in its socket. Plugged in again it is another one, whatever its path: old connections stay dead.
struct PluggedDevice {
    HidDeviceInfo info;
    quint64 plugId = 0;
};

} // namespace

struct ScriptedBus::State {
    /// Waits on the system clock: its timed wait, unlike the steady one, follows a clock that runs faster for
    /// a test.
    template <typename Condition>
    bool waitFor(std::unique_lock<std::mutex> &lock, std::chrono::milliseconds timeout, Condition condition)
    {
        if (timeout == HidConnection::kNoLimit) {
            changed.wait(lock, condition);
            return true;
        }
        return changed.wait_until(lock, std::chrono::system_clock::now() + timeout, condition);
    }

    const PluggedDevice *find(const QString &path) const
    {
        for (const PluggedDevice &device : devices) {
            if (device.info.path == path)
                return &device;
        }
        return nullptr;
    }

    bool isPlugged(quint64 plugId) const
    {
        for (const PluggedDevice &device : devices) {
            if (device.plugId == plugId)
                return true;
        }
        return false;
    }

    void queue(const QList<QByteArray> &more)
    {
        for (const QByteArray &report : more)
            reports.push_back(deepCopy(report));
    }

    std::mutex mutex;
    std::condition_variable changed;
    QList<PluggedDevice> devices;
    quint64 lastPlugId = 0;
    bool hotplugged = false;
    bool interrupted = false;

    bool refuseListing = false;
    bool refuseOpen = false;
    int writesToFail = 0;
    std::deque<QByteArray> reports;
    std::function<QList<QByteArray>(const QByteArray &)> responder;
    std::function<void()> beforeOpen;
    std::function<void()> afterOpen;

    QList<QByteArray> written;
    QStringList opened;
    int openConnections = 0;
};

namespace {

using SharedState = std::shared_ptr<ScriptedBus::State>;

class ScriptedConnection : public HidConnection {
public:
    /// Counted by the caller, who holds the lock.
    ScriptedConnection(SharedState state, quint64 plugId)
        : m_state(std::move(state))
        , m_plugId(plugId)
    {
    }

    ~ScriptedConnection() override
    {
        const std::lock_guard lock(m_state->mutex);
        --m_state->openConnections;
        m_state->reports.clear(); // what a handle left unread is lost with it
    }

    ReadResult read(QByteArray &report, std::chrono::milliseconds timeout) override
    {
        std::unique_lock lock(m_state->mutex);
        m_state->waitFor(lock, timeout,
                         [this] { return !isPlugged() || m_interrupted || !m_state->reports.empty(); });
        if (!isPlugged())
            return ReadResult::Gone;
        if (std::exchange(m_interrupted, false) || m_state->reports.empty())
            return ReadResult::Timeout;
        report = std::move(m_state->reports.front());
        m_state->reports.pop_front();
        return ReadResult::Report;
    }

    void interruptRead() override
    {
        const std::lock_guard lock(m_state->mutex);
        m_interrupted = true;
        m_state->changed.notify_all();
    }

    bool write(const QByteArray &report) override
    {
        std::unique_lock lock(m_state->mutex);
        if (!isPlugged())
            return false;
        if (m_state->writesToFail > 0) {
            --m_state->writesToFail;
            return false;
        }
        m_state->written.append(deepCopy(report));
        const auto responder = m_state->responder;
        if (!responder)
            return true;
        lock.unlock();
        const QList<QByteArray> answers = responder(report);
        lock.lock();
        if (isPlugged())
            m_state->queue(answers);
        m_state->changed.notify_all();
        return true;
    }

private:
    bool isPlugged() const { return m_state->isPlugged(m_plugId); }

    SharedState m_state;
    quint64 m_plugId;
    bool m_interrupted = false;
};

class ScriptedTransport : public HidTransport {
public:
    explicit ScriptedTransport(SharedState state)
        : m_state(std::move(state))
    {
    }

    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->refuseListing)
            return std::nullopt;
        QList<HidDeviceInfo> found;
        for (const PluggedDevice &device : std::as_const(m_state->devices)) {
            if (device.info.vendorId == vendorId)
                found.append(deepCopy(device.info));
        }
        return found;
    }

    std::unique_ptr<HidConnection> open(const QString &path) override
    {
        std::unique_lock lock(m_state->mutex);
        runHook(lock, m_state->beforeOpen);
        const PluggedDevice *const device = m_state->find(path);
        if (!device || m_state->refuseOpen)
            return nullptr;
        m_state->opened.append(deepCopy(path));
        ++m_state->openConnections;
        auto connection = std::make_unique<ScriptedConnection>(m_state, device->plugId);
        runHook(lock, m_state->afterOpen);
        return connection;
    }

    bool waitForHotplug(std::chrono::milliseconds timeout) override
    {
        std::unique_lock lock(m_state->mutex);
        m_state->waitFor(lock, timeout, [this] { return m_state->hotplugged || m_state->interrupted; });
        m_state->interrupted = false;
        return std::exchange(m_state->hotplugged, false);
    }

    void interruptHotplugWait() override
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->interrupted = true;
        m_state->changed.notify_all();
    }

private:
    /// A hook may plug, unplug or call the library.
    static void runHook(std::unique_lock<std::mutex> &lock, const std::function<void()> &hook)
    {
        const auto copy = hook;
        lock.unlock();
        if (copy)
            copy();
        lock.lock();
    }

    SharedState m_state;
};

} // namespace

ScriptedBus::ScriptedBus(std::shared_ptr<State> state)
    : m_state(std::move(state))
{
}

ScriptedBus *ScriptedBus::install()
{
    auto state = std::make_shared<State>();
    if (!HIDCommunicator::installTransport(std::make_unique<ScriptedTransport>(state)))
        qFatal("ScriptedBus::install() must come before the HID library is first used");
    static ScriptedBus bus(state);
    return &bus;
}

QString ScriptedBus::pathFor(int productId, int serial)
{
    return QStringLiteral(R"(\\?\hid#vid_352f&pid_%1#scripted%2#{4d1e55b2-f16f-11cf-88cb-001111000030})")
        .arg(productId, 4, 16, QLatin1Char('0'))
        .arg(serial);
}

QString ScriptedBus::plug(int productId, int serial)
{
    const QString path = pathFor(productId, serial);
    plugPath(path, productId);
    return path;
}

void ScriptedBus::plugPath(const QString &path, int productId)
{
    plugDevice({path, kFamilyVendorId, productId});
}

void ScriptedBus::plugDevice(const HidDeviceInfo &device)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->devices.append({deepCopy(device), ++m_state->lastPlugId});
    m_state->hotplugged = true;
    m_state->changed.notify_all();
}

void ScriptedBus::unplug(int productId, int serial)
{
    unplugPath(pathFor(productId, serial));
}

void ScriptedBus::unplugPath(const QString &path)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->devices.removeIf([&](const PluggedDevice &device) { return device.info.path == path; });
    m_state->hotplugged = true;
    m_state->changed.notify_all();
}

void ScriptedBus::unplugAll()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->devices.clear();
    m_state->hotplugged = true;
    m_state->changed.notify_all();
}

void ScriptedBus::refuseOpen(bool refuse)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->refuseOpen = refuse;
}

void ScriptedBus::refuseListing(bool refuse)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->refuseListing = refuse;
}

void ScriptedBus::failNextWrites(int count)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->writesToFail = count;
}

void ScriptedBus::queueReport(const QByteArray &reportWithId)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->queue({reportWithId});
    m_state->changed.notify_all();
}

void ScriptedBus::setResponder(std::function<QList<QByteArray>(const QByteArray &report)> responder)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->responder = std::move(responder);
}

void ScriptedBus::setOpenHooks(std::function<void()> before, std::function<void()> after)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->beforeOpen = std::move(before);
    m_state->afterOpen = std::move(after);
}

QList<QByteArray> ScriptedBus::written() const
{
    const std::lock_guard lock(m_state->mutex);
    return deepCopy(m_state->written);
}

QStringList ScriptedBus::opened() const
{
    const std::lock_guard lock(m_state->mutex);
    return deepCopy(m_state->opened);
}

int ScriptedBus::openConnections() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->openConnections;
}

void ScriptedBus::clear()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->written.clear();
    m_state->opened.clear();
    m_state->reports.clear();
    m_state->responder = nullptr;
    m_state->beforeOpen = nullptr;
    m_state->afterOpen = nullptr;
    m_state->refuseListing = false;
    m_state->refuseOpen = false;
    m_state->writesToFail = 0;
}
