// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/RegisterReports.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

/// What a mock device says of itself.
struct MockIdentity {
    int vendorId = 0x352F;
    int productId = 0x000E;
    int reportId = rig::kReportId; ///< the one its report descriptor declares
};

/// A device in its socket: a hidraw node that this process plays, on a thread of its own. Every function may
/// be called from any thread, but unplug() not from the responder.
class MockDevice {
public:
    /// Called for every report written to the node, on the device's thread; what it returns is sent.
    using Responder = std::function<QList<QByteArray>(const QByteArray &report)>;
    struct State;

    explicit MockDevice(std::shared_ptr<State> state);
    ~MockDevice(); ///< unplugs it
    MockDevice(const MockDevice &) = delete;
    MockDevice &operator=(const MockDevice &) = delete;

    QString path() const; ///< as the HID library announces it
    QByteArray deviceFile() const; ///< "/dev/hidraw3"
    int openHandles() const; ///< how many handles on the node this process has, a dead device's included

    void setResponder(Responder responder);
    /// As the kernel, it keeps 63 reports that were not read, and drops what comes after them.
    void send(const QByteArray &report);
    QList<QByteArray> written() const;

    /// Called on the device's thread for every question that a program asks the node, before the answer.
    void setAskedHook(std::function<void()> hook);

    void setReady(bool ready); ///< a node that is not ready answers ENOTTY
    void setTellsReports(bool tells); ///< whether it shows its report descriptor; for sysfs before it is seen
    void setIdentity(const MockIdentity &identity); ///< the node's name has passed to another device
    /// Takes this many bytes of each report, or, where it is below 0, none for now (EAGAIN).
    void setTaking(int bytes);
    void setPermitted(
        bool permitted); ///< a node that is not may not be opened, by root neither without its privilege
    void setNodePresent(bool present); ///< whether the device file is there

    void hangUp(); ///< fails where it is: reads and writes go wrong, and nothing else tells of it
    void unplug();

private:
    std::shared_ptr<State> m_state;
};

/// The bus below the HID library's own Linux transport: devices in sysfs, device files and the system's
/// events. One for a process, which runs under umockdev-wrapper; made before OrvikHIDManager::instance(),
/// destroyed after the last release(). The library has to be acquired while devices come and go: nobody else
/// takes the events.
class MockBus {
public:
    MockBus();
    ~MockBus();
    MockBus(const MockBus &) = delete;
    MockBus &operator=(const MockBus &) = delete;

    /// Why there can be none on this machine; empty when there can.
    static QString obstacle();

    /// Whether this process sees it: not without umockdev-wrapper.
    bool isShown() const;

    /// Plugs a device in, under a node that was never used before. \a prepare is called before anybody can
    /// see it.
    std::unique_ptr<MockDevice> plug(const MockIdentity &identity = {},
                                     const std::function<void(MockDevice &)> &prepare = {});

    struct State;

private:
    std::shared_ptr<State> m_state;
};
