// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

/// Lists of device paths, and what the log says of them.
namespace Scans {

inline QString path(const QString &productId)
{
    return QStringLiteral("\\\\?\\hid#vid_352f&pid_%1&mi_03#8&1a2b3c").arg(productId);
}

inline QStringList paths(const QStringList &productIds)
{
    QStringList list;
    for (const QString &productId : productIds)
        list.append(path(productId));
    return list;
}

inline QString word(bool flag)
{
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

/// The summary of a list. \a found has a letter for each flag that is set: P and p for the PC chip in normal
/// mode and in its boot loader, O and o for the OTG chip.
inline QString foundLine(const QString &found)
{
    return QStringLiteral("[ConnectingR2] foundR2= %1  foundR2DFU= %2  foundR2OTG= %3  foundR2OTGDFU= %4")
        .arg(word(found.contains(u'P')), word(found.contains(u'p')), word(found.contains(u'O')),
             word(found.contains(u'o')));
}

} // namespace Scans
