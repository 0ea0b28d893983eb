// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/Report.h"

#include "device/RegisterFrame.h"

#include <QStringList>

namespace Report {

using namespace RegisterFrame;

namespace {
constexpr int kOverhead = kPayloadAt + kChecksumSize; // what the stated length counts besides the payload
constexpr int kEntrySize = 4;
constexpr int kVersionOffset = 9;
constexpr int kVersionParts = 3;
constexpr char kDroppedMark = 2;
constexpr int kLoggedBytes = 25;
} // namespace

std::optional<quint8> operation(const QByteArray &report)
{
    if (report.size() <= kPayloadAt)
        return std::nullopt;
    return quint8(report.at(kOperationAt));
}

bool isDropped(const QByteArray &report)
{
    return report.size() > kPayloadAt && report.at(kPayloadAt) == kDroppedMark;
}

QList<RegisterValue> randomReadEntries(const QByteArray &report)
{
    QList<RegisterValue> entries;
    if (report.size() <= kLengthAt)
        return entries;
    const int stated = (int(quint8(report.at(kLengthAt))) - kOverhead) / kEntrySize;
    for (int i = 0; i < stated; ++i) {
        const qsizetype offset = kPayloadAt + qsizetype(i) * kEntrySize;
        if (offset + kEntrySize > report.size())
            break;
        entries.append({wordAt(report, offset), wordAt(report, offset + 2)});
    }
    return entries;
}

std::optional<VersionReply> versionReply(const QByteArray &report)
{
    if (report.size() < kPayloadAt + 2)
        return std::nullopt;
    VersionReply reply{wordAt(report, kPayloadAt), {}};
    if (report.size() >= kVersionOffset + 2 * kVersionParts) {
        QStringList parts;
        for (int i = 0; i < kVersionParts; ++i)
            parts.append(QString::number(qint16(wordAt(report, kVersionOffset + 2 * i))));
        reply.version = parts.join(u'.');
    }
    return reply;
}

std::optional<QString> logText(const QByteArray &report)
{
    if (report.size() <= kLengthAt || report.at(kLengthAt) == 0)
        return std::nullopt;
    QString text = QStringLiteral("[HID接收] 数据长度: %1  内容:").arg(report.size());
    for (const char byte : report.left(kLoggedBytes))
        text += QStringLiteral(" %1").arg(quint8(byte), 2, 16, QLatin1Char('0'));
    if (report.size() > kLoggedBytes)
        text += QStringLiteral("...");
    return text;
}

} // namespace Report
