// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>

namespace probe {

enum class Direction { Out, In };

/// What \a report says, its ID in front, in words; and what is odd about it, in brackets behind. For example
/// "read 3 registers from 000b (PC version)" and "registers from 000b (PC version): 0001 0002 0003 = 1.2.3".
QString wordsOf(const QByteArray &report, Direction direction);

/// The bytes in hexadecimal, the zeros at the end left out and counted.
QString bytesText(const QByteArray &report);

} // namespace probe
