// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

/// Empty when every line of \a expected stands in \a lines in this order, whatever stands between them;
/// otherwise the first one that is missing or comes too early.
inline QString missingInOrder(const QStringList &lines, const QStringList &expected)
{
    qsizetype from = 0;
    for (const QString &line : expected) {
        const qsizetype at = lines.indexOf(line, from);
        if (at < 0)
            return line;
        from = at + 1;
    }
    return {};
}
