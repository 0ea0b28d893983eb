#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <QByteArray>
#include <QList>
#include <QString>

namespace HIDCommunicator {

/// The attached hidraw nodes of \a vendorId. hidapi's own enumeration is not used: it does not survive a
/// device that leaves while it looks.
QList<HidDeviceInfo> listHidrawNodes(int vendorId);

/// The device file behind a path that listHidrawNodes() gave, for example "/dev/hidraw3". Empty when that
/// node has left, belongs to another device by now, is not ready, or cannot carry the family's reports.
QByteArray usableDeviceFile(const QString &path);

} // namespace HIDCommunicator
