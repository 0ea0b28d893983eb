// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "SystemCalls.h"
#include "rig/usb/RemoteBus.h"
#include "tests/hid/bus/BusTest.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>

class SystemBus;

/// What a device says of itself.
struct SystemIdentity {
    int vendorId = 0x352F;
    int productId = 0x000E;
    int reportId = 0x51; ///< the one its report descriptor declares
};

/// A device that Windows itself finds. It leaves when this goes. Every function may be called from any
/// thread.
class SystemDevice {
public:
    /// Called for every report that the device is sent, on a thread of the bus's; what it returns is sent.
    using Responder = std::function<QList<QByteArray>(const QByteArray &report)>;

    /// \a number counts all devices of the bus, \a place those with the same IDs that are plugged in.
    SystemDevice(SystemBus &bus, int number, int place, const SystemIdentity &identity);
    ~SystemDevice();
    SystemDevice(const SystemDevice &) = delete;
    SystemDevice &operator=(const SystemDevice &) = delete;

    QString path() const; ///< as the HID library announces it
    void setResponder(Responder responder);
    void send(const QByteArray &report);
    QList<QByteArray> written() const;
    int openHandles() const; ///< of the HID library's, for reports
    void unplug();

private:
    friend class SystemBus;
    void hear(const QByteArray &report);

    SystemBus &m_bus;
    const int m_number;
    const int m_place;
    const SystemIdentity m_identity;
    bool m_plugged = true; // the bus's mutex guards it
    mutable std::mutex m_mutex;
    Responder m_responder;
    QList<QByteArray> m_written;
};

/// The HID bus of the Windows that a test runs in: Wine's, with umockdev below it.
class SystemBus {
public:
    SystemBus();

    bool connectToIt(QString *error) { return m_remote.connectToIt(error); }
    std::unique_ptr<SystemDevice> plug(const SystemIdentity &identity = {});

private:
    friend class SystemDevice;
    void hear(int number, const QByteArray &report);
    int placeLocked(const SystemIdentity &identity) const;

    std::mutex m_mutex; ///< a device does not leave while it hears
    QHash<int, SystemDevice *> m_devices;
    int m_plugs = 0;
    rig::usb::RemoteBus m_remote;
};

/// Base of the tests against devices that Windows finds: each test function starts with an empty bus.
class SystemBusTest : public BusTest {
    Q_OBJECT

protected:
    SystemBus &bus() { return *m_bus; }
    SystemCalls &calls() { return *m_calls; }

    /// Whether the bus's last scan found just these, in any order.
    bool lastScanFound(const QStringList &paths) const;

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private:
    std::unique_ptr<SystemBus> m_bus;
    std::unique_ptr<SystemCalls> m_calls;
};
