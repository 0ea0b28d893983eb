// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <HIDCommunicator/hidcommunicator_export.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

/// The link to the devices on the HID bus.
namespace HIDCommunicator {

class ManagerCore;

/// The process-wide link to the devices of the family (USB vendor 0x352F) on the HID bus.
///
/// Usual course: acquire(), connect to the signals; on each deviceListChanged() while getConnected() is
/// false, openHIDHandle() one of the paths and start both threads; on blockHidConnetStatus(1) close both
/// threads. The device is found again by itself. release() at the end.
///
/// Threads. The library has three: the bus watch (first acquire() to last release()), the send thread and the
/// receive thread (each from create... to close..., the end of the connection or the last release()).
///
/// Calls. Every function may be called from any thread, at any time, in any order, repeatedly, and from
/// inside a slot that one of the signals runs; a call that makes no sense at the moment has no effect. None
/// keeps its caller longer than 100 ms, except openHIDHandle(), which takes as long as the system's own open.
/// A thread that was closed has ended, and emits nothing more, when the call returns. Only one that hangs in
/// a system call or in a slot is left to end by itself, and the next one in its place begins after it.
///
/// Signals. deviceListChanged() and blockHidConnetStatus() come from the bus watch, in the order of what they
/// tell, blockReceiveData() from the receive thread. Connect with Qt::QueuedConnection. A slot connected with
/// Qt::DirectConnection runs on the library's thread; no lock is held then. What was emitted before the last
/// release() may still arrive after it.
///
/// Event loop. The manager belongs to the application object's thread, which must run an event loop. After a
/// loss nothing is opened until that loop has come past blockHidConnetStatus(1), or else its receivers, who
/// close the threads, could close those of the next device. A scan follows at once.
///
/// End. The instance is never destroyed. Threads that nobody released end with the application object, or
/// with the process where that is never destroyed.
class HIDCOMMUNICATOR_EXPORT OrvikHIDManager : public QObject {
    Q_OBJECT

public:
    /// The one manager of the process, made on first use; installTransport() comes before. Not to be deleted.
    static OrvikHIDManager *instance();

    /// Counts one more user. The first one starts the bus watch. Each is followed by a scan as soon as the
    /// application's event loop runs, so that slots connected right after this call miss nothing.
    void acquire();

    /// Counts one user less. The last one ends all threads, closes the device and forgets the queued reports;
    /// nothing is emitted for that. Calls beyond the last are ignored.
    void release();

    /// Replaces the content of both lists, in parallel, by the path and the USB product ID of every device of
    /// the family attached at this moment. Works without acquire(). Both lists are empty when there is none.
    ///
    /// A path carries "vid_xxxx&pid_xxxx" in lower-case hexadecimal and is unique among the attached devices.
    /// On Windows it is the system's device path. On Linux it has the same shape around the hidraw node:
    /// "\\?\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030}". A device with several HID
    /// interfaces has several paths; those that openHIDHandle() can open come last.
    void getOrvikHIDListPath(QStringList &paths, QList<int> &productIds);

    /// Opens the device at \a path, one of those listed, in upper or lower case. \a vendorId and \a productId
    /// are the USB IDs it must have; \a mode is reserved, pass 0. blockHidConnetStatus(0) follows. Nothing is
    /// sent or received before the threads are created.
    ///
    /// True when that device is open after the call, also when it was before. False when it is not attached,
    /// has other IDs, is busy, not permitted, not ready, or does not speak report ID 0x51; when another
    /// device is open; before acquire(); while a loss is on its way. Try again at the next
    /// deviceListChanged().
    bool openHIDHandle(const QString &path, int vendorId, int productId, int mode);

    /// Starts sending what is queued to the open device. Without one, or while it runs, there is no effect.
    void createOrvikSendDataThread();
    /// Starts receiving from the open device. Without one, or while it runs, there is no effect.
    void createOrvikReceiveDataThread();
    /// Ends sending; the device stays open and unsent reports stay queued.
    void closeOrvikSendDataThread();
    /// Ends receiving; the device stays open, and what it sends meanwhile may be lost.
    void closeOrvikReceiveDataThread();

    /// Whether a device is open. False from the moment its loss is noticed, before that is announced.
    bool getConnected() const;

    /// Ends both threads and closes the device, which may be opened again at once. Unsent reports stay
    /// queued; nothing is emitted. \a mode is reserved, pass 0. False when no device was open.
    bool disconnectDevice(int mode);

    /// Queues \a report, with or without an open device. It begins with the report ID 0x51 and has at most 65
    /// bytes, that one included; zeros are added up to 65. Anything else is not queued, with a warning. The
    /// queue holds 64: one more drops the oldest, with a warning. A report whose sending fails is not
    /// repeated.
    void DC_AddSendData(QByteArray report);

Q_SIGNALS:
    /// A scan of the bus: all that is attached, as in getOrvikHIDListPath(), also when nothing has changed.
    /// Scans run when something is plugged or unplugged, every 3 s while a device is open, else every 1 s.
    void deviceListChanged(QStringList paths, QList<int> productIds);

    /// \a status 0: a device was opened. 1, once for each of these: it was unplugged or failed, and is
    /// closed.
    void blockHidConnetStatus(int status);

    /// One input report without the report ID 0x51 in front: byte 0 of a well-formed one is the start mark
    /// 0xC4. The rest is not checked and of any length. Reports with another ID are dropped.
    void blockReceiveData(QByteArray report);

private:
    OrvikHIDManager();
    ~OrvikHIDManager() override;

    std::unique_ptr<ManagerCore> m_core;
};

} // namespace HIDCommunicator
