// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

/// A bus for unit tests that does exactly what the test says. Install it once per process, before the first
/// panel:
///
///     static ScriptedBus *bus = ScriptedBus::install();
///     bus->plug(0x000E);
///     QTRY_COMPARE(bus->written().size(), 1);
///
/// Every function is thread-safe; plug() and unplug() wake the bus watch at once.
class ScriptedBus {
public:
    /// Installs the bus as the HID library's transport; must come before OrvikHIDManager::instance().
    static ScriptedBus *install();

    static QString pathFor(int productId, int serial = 0); ///< "…vid_352f&pid_000e…", what plug() announces

    QString plug(int productId, int serial = 0); ///< returns the path
    void plugPath(const QString &path, int productId); ///< any spelling of a path
    void plugDevice(const HIDCommunicator::HidDeviceInfo &device); ///< of any vendor
    void unplug(int productId, int serial = 0);
    void unplugPath(const QString &path);
    void unplugAll();

    void refuseOpen(bool refuse); ///< open() fails while set
    /// \a before runs inside every open() before it looks for the device, \a after when the device is open.
    void setOpenHooks(std::function<void()> before, std::function<void()> after = {});
    void refuseListing(bool refuse); ///< the bus cannot be looked at while set
    void failNextWrites(int count);
    void queueReport(const QByteArray &reportWithId); ///< the open device sends this; report ID first
    /// Called for every written report, on the send thread; what it returns is queued as reports.
    void setResponder(std::function<QList<QByteArray>(const QByteArray &report)> responder);

    QList<QByteArray> written() const; ///< every report written since the last clear(), report ID included
    QStringList opened() const; ///< the paths that were opened successfully since the last clear(), in order
    int openConnections() const; ///< how many are open right now
    /// Forgets written(), opened(), queued reports, the responder, the hooks and refusals; the devices stay.
    void clear();

    struct State;

private:
    explicit ScriptedBus(std::shared_ptr<State> state);
    std::shared_ptr<State> m_state;
};
