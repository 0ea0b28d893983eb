// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/RegisterFrame.h"

#include <numeric>

namespace RegisterFrame {

quint16 wordAt(const QByteArray &report, qsizetype at)
{
    return quint16(quint8(report.at(at)) | quint8(report.at(at + 1)) << 8);
}

void appendWord(QByteArray &report, quint16 word)
{
    report.append(char(word & 0xFF)).append(char(word >> 8));
}

quint16 checksumOf(QByteArrayView covered)
{
    const unsigned sum = std::accumulate(covered.begin(), covered.end(), 0u,
                                         [](unsigned sum, char byte) { return sum + quint8(byte); });
    return quint16(0u - sum);
}

} // namespace RegisterFrame
