// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "SystemCalls.h"
#include "rig/usb/RemoteBus.h"
#include "tests/hid/Recorder.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <mutex>

class SystemBus;

/// A device that Windows itself finds. It leaves when this goes. Every function may be called from any
/// thread.
class SystemDevice {
public:
    /// Called for every report that the device is sent, on a thread of the bus's; what it returns is sent.
    using Responder = std::function<QList<QByteArray>(const QByteArray &report)>;

    /// \a number counts all devices of the bus, \a place those with the same IDs that are plugged in.
    SystemDevice(SystemBus &bus, int number, int place, int vendorId, int productId);
    ~SystemDevice();
    SystemDevice(const SystemDevice &) = delete;
    SystemDevice &operator=(const SystemDevice &) = delete;

    QString path() const; ///< as the HID library announces it
    void setResponder(Responder responder);
    void send(const QByteArray &report);
    QList<QByteArray> heard() const;
    void unplug();

private:
    friend class SystemBus;
    void hear(const QByteArray &report);

    SystemBus &m_bus;
    const int m_number;
    const int m_place;
    const int m_vendorId;
    const int m_productId;
    bool m_plugged = true; // the bus's mutex guards it
    mutable std::mutex m_mutex;
    Responder m_responder;
    QList<QByteArray> m_heard;
};

/// The HID bus of the Windows that a test runs in: Wine's, with umockdev below it.
class SystemBus {
public:
    SystemBus();

    bool connectToIt(QString *error) { return m_remote.connectToIt(error); }
    std::unique_ptr<SystemDevice> plug(int productId = 0x000E, int vendorId = 0x352F, int reportId = 0x51);

private:
    friend class SystemDevice;
    void hear(int number, const QByteArray &report);
    int placeLocked(int productId, int vendorId) const;

    std::mutex m_mutex; ///< a device does not leave while it hears
    QHash<int, SystemDevice *> m_devices;
    int m_plugs = 0;
    rig::usb::RemoteBus m_remote;
};

/// Base of the tests on the library as it ships, against devices that the system finds: each test function
/// starts with an empty bus, one acquire() and a recorder, and ends with the release().
class SystemBusTest : public QObject {
    Q_OBJECT

protected:
    /// Any longer than this, and something is lost. Nothing is expected to take nearly as long.
    static constexpr int kPatienceMs = 20000;

    SystemBus &bus() { return *m_bus; }
    Recorder &recorder() { return *m_recorder; }
    SystemCalls &calls() { return *m_calls; }
    static HIDCommunicator::OrvikHIDManager &manager();

    static bool open(const SystemDevice &device, int productId = 0x000E);
    static void startThreads();
    /// The recorder does what a panel does: opens what it finds, closes the threads of what has gone.
    void answerAsAPanel();
    /// Whether the bus's last scan found just these, in any order.
    bool lastScanFound(const QStringList &paths) const;
    /// Whether \a device gets a report through the library, and the library the answer.
    bool isServed(SystemDevice &device);
    static QByteArray
    report(int mark); ///< an output report with \a mark and its complement behind the start mark

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private:
    void listen(Recorder::Hooks hooks);

    std::unique_ptr<SystemBus> m_bus;
    std::unique_ptr<SystemCalls> m_calls;
    std::unique_ptr<Recorder> m_recorder;
};
