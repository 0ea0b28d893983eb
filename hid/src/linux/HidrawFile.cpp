// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "HidrawFile.h"

#include "ReportDescriptor.h"
#include "ReportFraming.h"

#include <QByteArray>

#include <cerrno>

#include <fcntl.h>
#include <linux/hidraw.h>
#include <sys/ioctl.h>

namespace HIDCommunicator {

namespace {

/// A node that is not ready, or not a hidraw node at all, has no answer.
bool isDevice(int node, const DevicePath &wanted)
{
    hidraw_devinfo info{};
    return ioctl(node, HIDIOCGRAWINFO, &info) >= 0 && quint16(info.vendor) == wanted.vendorId
        && quint16(info.product) == wanted.productId;
}

/// A device that does not tell its report IDs is given the benefit of the doubt.
bool mayCarryReports(int node)
{
    int size = 0;
    hidraw_report_descriptor descriptor{};
    if (ioctl(node, HIDIOCGRDESCSIZE, &size) < 0 || size <= 0 || size > int(sizeof descriptor.value))
        return true;
    descriptor.size = quint32(size);
    if (ioctl(node, HIDIOCGRDESC, &descriptor) < 0)
        return true;
    const auto *const bytes = reinterpret_cast<const char *>(descriptor.value);
    return declaresReportId(QByteArray::fromRawData(bytes, size), quint8(kReportId));
}

/// Waking the device up for its first user may take the system 50 ms, and a signal may come meanwhile.
Descriptor openFile(const QByteArray &deviceFile)
{
    for (;;) {
        const int descriptor = ::open(deviceFile.constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        if (descriptor >= 0 || errno != EINTR)
            return Descriptor(descriptor);
    }
}

} // namespace

Descriptor openHidrawFile(const DevicePath &wanted)
{
    Descriptor node = openFile(wanted.deviceFile());
    if (!node.isOpen() || !isDevice(node.get(), wanted) || !mayCarryReports(node.get()))
        return Descriptor();
    return node;
}

} // namespace HIDCommunicator
