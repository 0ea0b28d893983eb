// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <type_traits>

/// A copy that shares nothing with its original. Qt's texts and lists share their data until one of them
/// changes, and look at the number of owners in a way that orders nothing between two threads. So whatever
/// one thread of a test hands to another is handed over like this.
inline QByteArray deepCopy(const QByteArray &bytes)
{
    return QByteArray(bytes.constData(), bytes.size());
}

inline QString deepCopy(const QString &text)
{
    return QString(text.constData(), text.size());
}

/// Of numbers, moments and the like.
template <typename Value> Value deepCopy(const Value &value)
{
    static_assert(std::is_trivially_copyable_v<Value>, "say how to copy this one");
    return value;
}

template <typename Value> QList<Value> deepCopy(const QList<Value> &list)
{
    QList<Value> copy;
    copy.reserve(list.size());
    for (const Value &value : list)
        copy.append(deepCopy(value));
    return copy;
}
