// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What the fuzz targets have in common: how an input is taken, and how one that breaks a promise is told of.
namespace fuzz {

/// Ends the process when a promise is broken, as the sanitizers do: \a promise says which.
inline void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::fflush(stderr);
    std::abort();
}

inline QByteArray bytesOf(const std::uint8_t *data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
}

/// Takes bytes from the front of an input. What is not there any more reads as zeros, or as nothing.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size)
        : m_bytes(bytesOf(data, size))
    {
    }

    bool atEnd() const { return m_at == m_bytes.size(); }
    quint8 takeByte() { return atEnd() ? 0 : quint8(m_bytes.at(m_at++)); }
    QByteArray take(qsizetype count)
    {
        const QByteArray taken = m_bytes.mid(m_at, count);
        m_at += taken.size();
        return taken;
    }
    QByteArray takeRest() { return take(m_bytes.size()); }

private:
    QByteArray m_bytes;
    qsizetype m_at = 0;
};

/// Whether \a text can be put on a terminal as it is: printable characters of ASCII.
inline bool isPlain(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character >= u' ' && character <= u'~'; });
}

/// Likewise, for texts that may be Chinese.
inline bool isPrintable(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.isPrint() || character.isSurrogate(); });
}

} // namespace fuzz
