#include "device/Report.h"

#include <QStringList>

namespace Report {

namespace {
constexpr int kLengthOffset = 1;
constexpr int kOperationOffset = 4;
constexpr int kPayloadOffset = 5;
constexpr int kOverhead = 7; // what the stated length counts besides the payload
constexpr int kEntrySize = 4;
constexpr int kVersionOffset = 9;
constexpr int kVersionParts = 3;
constexpr char kDroppedMark = 2;
constexpr int kLoggedBytes = 25;

template <typename Word> Word wordAt(const QByteArray &report, qsizetype offset)
{
    return Word(quint8(report.at(offset)) | quint8(report.at(offset + 1)) << 8);
}
} // namespace

std::optional<quint8> operation(const QByteArray &report)
{
    if (report.size() <= kPayloadOffset)
        return std::nullopt;
    return quint8(report.at(kOperationOffset));
}

bool isDropped(const QByteArray &report)
{
    return report.size() > kPayloadOffset && report.at(kPayloadOffset) == kDroppedMark;
}

QList<RegisterValue> randomReadEntries(const QByteArray &report)
{
    QList<RegisterValue> entries;
    if (report.size() <= kLengthOffset)
        return entries;
    const int stated = (int(quint8(report.at(kLengthOffset))) - kOverhead) / kEntrySize;
    for (int i = 0; i < stated; ++i) {
        const qsizetype offset = kPayloadOffset + qsizetype(i) * kEntrySize;
        if (offset + kEntrySize > report.size())
            break;
        entries.append({wordAt<quint16>(report, offset), wordAt<quint16>(report, offset + 2)});
    }
    return entries;
}

std::optional<VersionReply> versionReply(const QByteArray &report)
{
    if (report.size() < kPayloadOffset + 2)
        return std::nullopt;
    VersionReply reply{wordAt<quint16>(report, kPayloadOffset), {}};
    if (report.size() >= kVersionOffset + 2 * kVersionParts) {
        QStringList parts;
        for (int i = 0; i < kVersionParts; ++i)
            parts.append(QString::number(wordAt<qint16>(report, kVersionOffset + 2 * i)));
        reply.version = parts.join(u'.');
    }
    return reply;
}

std::optional<QString> logText(const QByteArray &report)
{
    if (report.size() <= kLengthOffset || report.at(kLengthOffset) == 0)
        return std::nullopt;
    QString text = QStringLiteral("[HID接收] 数据长度:%1 内容:").arg(report.size());
    for (const char byte : report.left(kLoggedBytes))
        text += QStringLiteral(" %1").arg(quint8(byte), 2, 16, QLatin1Char('0'));
    if (report.size() > kLoggedBytes)
        text += QStringLiteral("...");
    return text;
}

} // namespace Report
