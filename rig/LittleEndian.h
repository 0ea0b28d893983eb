// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

namespace rig {

/// Numbers as they stand in reports and images: little-endian, at any offset.
template <typename T> T numberAt(const QByteArray &bytes, qsizetype offset)
{
    quint32 number = 0;
    for (qsizetype at = qsizetype(sizeof(T)) - 1; at >= 0; --at)
        number = number << 8 | quint8(bytes.at(offset + at));
    return T(number);
}

template <typename T> QByteArray bytesOf(T number)
{
    QByteArray bytes;
    for (std::size_t at = 0; at < sizeof(T); ++at)
        bytes.append(char(number >> (8 * at)));
    return bytes;
}

} // namespace rig
