// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/RegisterReport.h"

#include "device/RegisterFrame.h"

#include <algorithm>

using namespace RegisterFrame;

std::optional<RegisterReport> RegisterReport::decode(const QByteArray &report)
{
    if (report.size() <= kOperationAt)
        return std::nullopt;
    RegisterReport decoded;
    decoded.hasStartMark = report.at(0) == kStartMark;
    decoded.stated = quint8(report.at(kLengthAt));
    decoded.operation = quint8(report.at(kOperationAt));
    const qsizetype payloadEnd
        = std::clamp<qsizetype>(decoded.stated - kChecksumSize, kPayloadAt, report.size());
    for (qsizetype at = kPayloadAt; at + 2 <= payloadEnd; at += 2)
        decoded.words.append(wordAt(report, at));
    decoded.rightChecksum = checksumOf(QByteArrayView(report).first(payloadEnd));
    if (decoded.stated >= kPayloadAt + kChecksumSize && decoded.stated <= report.size())
        decoded.checksum = wordAt(report, payloadEnd);
    return decoded;
}
