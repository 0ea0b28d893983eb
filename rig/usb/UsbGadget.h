// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/usb/FileDescriptor.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

struct usb_ctrlrequest;

namespace rig::usb {

/// A USB device with one HID interface that this process plays on a controller of this machine: with
/// dummy_hcd, a real device to the machine itself. Linux's configfs gives it its identity, FunctionFS its
/// endpoints. Needs root. One thread calls its functions.
class UsbGadget {
public:
    /// What the device answers to a report, ID first. Called by a thread of the gadget's own.
    using Respond = std::function<QList<QByteArray>(const QByteArray &report)>;

    /// \a name distinguishes the machine's gadgets, \a controller is one of /sys/class/udc.
    UsbGadget(const QString &name, const QString &controller, Respond respond);
    ~UsbGadget();
    UsbGadget(const UsbGadget &) = delete;
    UsbGadget &operator=(const UsbGadget &) = delete;

    /// Lays everything out, unplugged. False, with one line in \a error, when the machine does not have what
    /// it takes.
    bool create(QString *error);

    bool plug(int productId, const QString &product); ///< false when the controller would not have it
    void unplug(); ///< an answer that is under way reaches the host first, within a second

private:
    bool layOut();
    bool openEndpoints();
    bool write(const QString &attribute, const QByteArray &value);
    QString inFolder(const QString &name) const { return m_folder + QLatin1Char('/') + name; }
    QByteArray endpointFile(int number) const;
    void remove();

    void serveControl();
    void answerSetup(const usb_ctrlrequest &setup);
    void serveReports();

    QString m_name;
    QString m_controller;
    Respond m_respond;
    QString m_folder; // the gadget's, in configfs
    QString m_function; // as configfs calls it
    QTemporaryDir m_endpoints; // FunctionFS is mounted here
    bool m_mounted = false;
    bool m_plugged = false;
    FileDescriptor m_control;
    FileDescriptor m_in;
    FileDescriptor m_out;
    std::atomic<bool> m_stopping{false};
    std::timed_mutex m_exchange; // held from a report to the end of its answer
    std::thread m_controlThread;
    std::thread m_reportThread;
};

} // namespace rig::usb
