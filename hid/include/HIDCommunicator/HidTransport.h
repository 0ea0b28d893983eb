// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <HIDCommunicator/hidcommunicator_export.h>

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace HIDCommunicator {

/// One HID device of the family as the bus shows it at this moment.
struct HidDeviceInfo {
    QString path; ///< carries "vid_xxxx&pid_xxxx" in lower-case hexadecimal; unique per attached device
    int vendorId = 0;
    int productId = 0;
};

/// One open device. read() is called from the receive thread only, write() from the send thread only;
/// both may run at the same time. The destructor closes the device; it runs after both have returned.
class HidConnection {
public:
    virtual ~HidConnection() = default;

    enum class ReadResult {
        Report, ///< a report was stored
        Timeout, ///< nothing arrived in time, or the wait was interrupted; try again
        Gone ///< the device has left or failed; the connection is of no further use
    };

    /// A read() that waits until something happens.
    static constexpr std::chrono::milliseconds kNoLimit = std::chrono::milliseconds::max();

    /// Waits at most \a timeout, or without a limit, for one input report. \a report starts with the report
    /// ID and may have any length.
    virtual ReadResult read(QByteArray &report, std::chrono::milliseconds timeout) = 0;

    /// Ends the current or, when none is running, the next read(). Callable from any thread.
    virtual void interruptRead() = 0;

    /// Sends one output report, report ID first. False: the device has left or failed.
    virtual bool write(const QByteArray &report) = 0;
};

/// The bus under the HID library: the system's own by default, a simulated bus in tests and demonstrations.
/// enumerate() and open() may be called from any thread, also at the same time: implementations lock.
class HidTransport {
public:
    virtual ~HidTransport() = default;

    /// All attached devices of \a vendorId; a device that cannot be asked is left out. Nothing when the bus
    /// as a whole could not be looked at, which says of no device that it has left.
    virtual std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) = 0;

    /// Opens the device that enumerate() named \a path; null when it has left, is busy or may not be opened.
    virtual std::unique_ptr<HidConnection> open(const QString &path) = 0;

    /// Blocks the bus watch until something was plugged or unplugged (true), \a timeout has passed, or
    /// interruptHotplugWait() was called (false). Called from the bus watch thread only.
    virtual bool waitForHotplug(std::chrono::milliseconds timeout) = 0;

    /// Ends the current or, when none is running, the next waitForHotplug(). Callable from any thread.
    virtual void interruptHotplugWait() = 0;
};

/// The system's own HID bus, which the library uses unless another one is installed. For transports that
/// stand in front of it. Never null; may be called from any thread.
HIDCOMMUNICATOR_EXPORT std::unique_ptr<HidTransport> makeDefaultTransport();

/// Replaces the default transport. Call it before OrvikHIDManager::instance() is first used; later calls are
/// refused (false) and \a transport is destroyed.
HIDCOMMUNICATOR_EXPORT bool installTransport(std::unique_ptr<HidTransport> transport);

} // namespace HIDCommunicator
