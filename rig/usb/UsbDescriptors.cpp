// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/usb/UsbDescriptors.h"

#include "rig/BootLoaderReports.h"
#include "rig/LittleEndian.h"
#include "rig/RegisterReports.h"

#include <linux/usb/ch9.h>
#include <linux/usb/functionfs.h>

namespace rig::usb {

namespace {

constexpr quint8 kHidDescriptorType = USB_TYPE_CLASS | 0x01;
constexpr quint8 kReportDescriptorType = USB_TYPE_CLASS | 0x02;
constexpr int kDescriptors = 4; // interface, HID, two endpoints
// Both mean one millisecond.
constexpr quint8 kFullSpeedInterval = 1;
constexpr quint8 kHighSpeedInterval = 4;

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    for (const int value : values)
        result.append(char(value));
    return result;
}

// One report each way; the ID is not counted.
QByteArray reportPair(char id)
{
    constexpr int kInput = 0x81;
    constexpr int kOutput = 0x91;
    constexpr int kVariable = 0x02;
    return bytes({0x85, id, // report ID
                  0x09, id, kInput, kVariable, 0x09, id, kOutput, kVariable});
}

QByteArray endpoint(int address, quint8 interval)
{
    return bytes(
        {USB_DT_ENDPOINT_SIZE, USB_DT_ENDPOINT, address, USB_ENDPOINT_XFER_INT, kPacketSize, 0, interval});
}

QByteArray atSpeed(quint8 interval)
{
    const int reportSize = int(reportDescriptor().size());
    return bytes({USB_DT_INTERFACE_SIZE, USB_DT_INTERFACE, 0, 0, 2, USB_CLASS_HID, 0, 0, 0})
        + bytes({9, kHidDescriptorType, 0x11, 0x01, 0, 1, kReportDescriptorType, reportSize & 0xFF,
                 reportSize >> 8})
        + endpoint(USB_DIR_IN | 1, interval) + endpoint(USB_DIR_OUT | 2, interval);
}

} // namespace

const QByteArray &reportDescriptor()
{
    static const QByteArray descriptor = bytes({0x06, 0x00, 0xFF, // usage page: the vendor's own
                                                0x09, 0x01, // usage
                                                0xA1, 0x01, // collection: application
                                                0x15, 0x00, 0x26, 0xFF, 0x00, // values 0 to 255
                                                0x75, 0x08, 0x95, kReportSize - 1}) // bytes; how many
        + reportPair(kReportId) + reportPair(kBootLoaderReportId) + bytes({0xC0});
    return descriptor;
}

QByteArray interfaceDescriptors()
{
    const QByteArray body = bytesOf(quint32(kDescriptors)) + bytesOf(quint32(kDescriptors))
        + atSpeed(kFullSpeedInterval) + atSpeed(kHighSpeedInterval);
    constexpr quint32 kHead = 3 * sizeof(quint32);
    return bytesOf(quint32(FUNCTIONFS_DESCRIPTORS_MAGIC_V2)) + bytesOf(quint32(kHead + body.size()))
        + bytesOf(quint32(FUNCTIONFS_HAS_FS_DESC | FUNCTIONFS_HAS_HS_DESC)) + body;
}

QByteArray interfaceStrings()
{
    constexpr quint32 kSize = 4 * sizeof(quint32);
    constexpr quint32 kNone = 0;
    return bytesOf(quint32(FUNCTIONFS_STRINGS_MAGIC)) + bytesOf(kSize) + bytesOf(kNone) + bytesOf(kNone);
}

} // namespace rig::usb
