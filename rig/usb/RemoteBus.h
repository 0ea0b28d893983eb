// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/RigThread.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QTcpSocket;

namespace rig::usb {

/// Devices that another process shows to the system on behalf of this one: a Windows program under Wine plugs
/// them in where Wine's bus driver looks for them. Every function may be called from any thread; none waits
/// for the other process, which does one thing after the other. A line stands for each:
///
///     plug <device> <vendor ID> <product ID> <report ID>     <device> is a number of the caller's choosing
///     unplug <device>
///     send <device> <report in hexadecimal>                  to whoever has it open
///
/// and from there, for each report that the device was sent:
///
///     heard <device> <report in hexadecimal>
class RemoteBus {
public:
    /// What \a device was sent, on a thread of the bus's own.
    using Heard = std::function<void(int device, const QByteArray &report)>;

    explicit RemoteBus(Heard heard);
    ~RemoteBus(); ///< unplugs all of them
    RemoteBus(const RemoteBus &) = delete;
    RemoteBus &operator=(const RemoteBus &) = delete;

    static bool isOffered(); ///< whether this process was started with one
    bool connectToIt(QString *error);

    void plug(int device, int vendorId, int productId, int reportId);
    void unplug(int device);
    void send(int device, const QByteArray &report);

private:
    void say(const QByteArray &verb, int device, const QByteArray &rest = {});
    void takeLines();

    Heard m_heard;
    QTcpSocket *m_socket = nullptr; // on the thread
    RigThread m_thread;
};

} // namespace rig::usb
