// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Through hidraw, beside the panel, which may have the same interface open: each sees the answers to the
// other and knows its own by the report ID.
#include "rig/tool/UsbWire.h"

#include "rig/Identity.h"
#include "rig/usb/FileDescriptor.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <poll.h>

namespace tool {

using rig::usb::FileDescriptor;

namespace {

constexpr char kNodes[] = "/sys/class/hidraw";
constexpr int kLargestReport = 4096;

// A node's system folder tells "HID_ID=0003:0000352F:000000FF": bus, vendor, product.
bool belongsTo(const QString &node, int productId)
{
    QFile file(QLatin1StringView(kNodes) + QLatin1Char('/') + node + QStringLiteral("/device/uevent"));
    const QByteArray wanted = "HID_ID=0003:" + QByteArray::number(rig::kVendorId, 16).rightJustified(8, '0')
        + ':' + QByteArray::number(productId, 16).rightJustified(8, '0');
    return file.open(QIODevice::ReadOnly) && file.readAll().split('\n').contains(wanted.toUpper());
}

/// The device file of this product ID; empty when there is none.
QByteArray deviceFile(int productId)
{
    const QStringList nodes
        = QDir(QLatin1StringView(kNodes)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString &node : nodes) {
        if (belongsTo(node, productId))
            return QFile::encodeName(QStringLiteral("/dev/") + node);
    }
    return {};
}

class UsbWire : public ChipWire {
public:
    // An emulated or busy machine is slow to enumerate a device.
    std::chrono::milliseconds patience() const override { return std::chrono::seconds(12); }

    bool find(int productId) override { return !deviceFile(productId).isEmpty(); }

    bool open(int productId) override
    {
        m_node = FileDescriptor(::open(deviceFile(productId).constData(), O_RDWR | O_CLOEXEC));
        return m_node.isOpen();
    }

    bool send(const QByteArray &report) override
    {
        return ::write(m_node.get(), report.constData(), size_t(report.size())) == report.size();
    }

    QByteArray receive(const QDeadlineTimer &deadline) override
    {
        pollfd node{m_node.get(), POLLIN, 0};
        if (::poll(&node, 1, int(deadline.remainingTime())) <= 0)
            return {};
        QByteArray report(kLargestReport, Qt::Uninitialized);
        report.truncate(qMax<ssize_t>(0, ::read(m_node.get(), report.data(), size_t(report.size()))));
        return report;
    }

private:
    FileDescriptor m_node;
};

} // namespace

std::unique_ptr<ChipWire> makeUsbWire()
{
    return std::make_unique<UsbWire>();
}

} // namespace tool
