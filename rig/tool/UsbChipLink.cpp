// Through hidraw, beside the panel, which may have the same interface open: each sees the answers to the
// other and knows its own by the report ID.
#include "rig/tool/UsbChipLink.h"

#include "rig/BootLoaderReports.h"
#include "rig/Identity.h"
#include "rig/LittleEndian.h"
#include "rig/usb/FileDescriptor.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>

#include <chrono>
#include <optional>

#include <fcntl.h>
#include <poll.h>

namespace tool {

using rig::BootLoaderCommand;
using rig::BootLoaderReport;
using rig::bytesOf;
using rig::usb::FileDescriptor;

namespace {

constexpr std::chrono::milliseconds kPatience{5000};
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

class UsbChipLink : public ChipLink {
public:
    // An emulated or busy machine is slow to enumerate a device.
    std::chrono::milliseconds patience() const override { return std::chrono::seconds(12); }

    bool find(int productId) override { return !deviceFile(productId).isEmpty(); }

    bool attach(int productId, bool alreadyInBootLoader) override
    {
        m_identity = rig::identityWith(productId);
        return m_identity && open(productId)
            && agree(BootLoaderCommand::Enter, QByteArray(1, char(alreadyInBootLoader)));
    }

    // The boot loader is another device on the bus than the firmware was, also where they share an ID.
    bool isReady() override { return open(m_identity->bootLoaderPid) && agree(BootLoaderCommand::Ready); }

    bool erase(qsizetype imageSize) override
    {
        return agree(BootLoaderCommand::Erase, bytesOf(quint32(imageSize)));
    }

    bool write(qsizetype offset, const QByteArray &block) override
    {
        if (block.size() > rig::kMaxBootLoaderBlock
            || !send({BootLoaderCommand::Block, bytesOf(quint32(offset)) + bytesOf(quint32(block.size()))}))
            return false;
        for (qsizetype at = 0; at < block.size(); at += rig::kMaxBootLoaderPayload) {
            if (!send({BootLoaderCommand::Data, block.mid(at, rig::kMaxBootLoaderPayload)}))
                return false;
        }
        return isYes(receive(BootLoaderCommand::Data));
    }

    QByteArray digest() override
    {
        if (!send({BootLoaderCommand::Digest, {}}))
            return {};
        return receive(BootLoaderCommand::Digest).value_or(QByteArray()).toHex();
    }

    bool restart() override { return agree(BootLoaderCommand::Restart); }

private:
    bool open(int productId)
    {
        m_node = FileDescriptor(::open(deviceFile(productId).constData(), O_RDWR | O_CLOEXEC));
        return m_node.isOpen();
    }

    bool send(const BootLoaderReport &report)
    {
        const QByteArray bytes = encode(report);
        return ::write(m_node.get(), bytes.constData(), size_t(bytes.size())) == bytes.size();
    }

    std::optional<QByteArray> receive(BootLoaderCommand command)
    {
        const QDeadlineTimer deadline(kPatience);
        pollfd node{m_node.get(), POLLIN, 0};
        QByteArray bytes;
        while (::poll(&node, 1, int(deadline.remainingTime())) > 0) {
            bytes.resize(kLargestReport);
            const ssize_t size = ::read(m_node.get(), bytes.data(), size_t(bytes.size()));
            if (size <= 0)
                return {};
            bytes.truncate(size);
            const auto answer = rig::decodeBootLoaderReport(bytes);
            if (answer && answer->command == command)
                return answer->payload;
        }
        return {};
    }

    static bool isYes(const std::optional<QByteArray> &answer)
    {
        return answer && *answer == QByteArray(1, '\1');
    }

    bool agree(BootLoaderCommand command, const QByteArray &payload = {})
    {
        return send({command, payload}) && isYes(receive(command));
    }

    const rig::ChipIdentity *m_identity = nullptr;
    FileDescriptor m_node;
};

} // namespace

std::unique_ptr<ChipLink> makeUsbChipLink()
{
    return std::make_unique<UsbChipLink>();
}

} // namespace tool
