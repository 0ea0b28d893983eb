// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ToolWire.h"

#include <QUrl>

namespace rig::wire {

QByteArray encode(const QStringList &words)
{
    QByteArrayList parts;
    for (const QString &word : words)
        parts.append(QUrl::toPercentEncoding(word));
    return parts.join(' ') + '\n';
}

QStringList decode(const QByteArray &line)
{
    // The line feed alone: a blank in front of it means that the last word is empty.
    const qsizetype end = line.endsWith('\n') ? line.size() - 1 : line.size();
    QStringList words;
    for (const QByteArray &part : line.first(end).split(' '))
        words.append(QUrl::fromPercentEncoding(part));
    return words;
}

} // namespace rig::wire
