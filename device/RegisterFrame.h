// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QByteArrayView>

/// How a report of the register protocol is laid out, for those who build one and those who read one. Offsets
/// are those behind the report ID.
namespace RegisterFrame {

constexpr char kStartMark = char(0xC4);
constexpr int kLengthAt = 1; ///< counts from the start mark to the checksum
constexpr int kOperationAt = 4;
constexpr int kPayloadAt = 5;
constexpr int kChecksumSize = 2;

/// The little-endian number at \a at, which has to be inside \a report.
quint16 wordAt(const QByteArray &report, qsizetype at);
void appendWord(QByteArray &report, quint16 word);

/// What makes the sum of \a covered and itself zero modulo 0x10000.
quint16 checksumOf(QByteArrayView covered);

} // namespace RegisterFrame
