// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/HttpMessages.h"

#include <algorithm>

namespace rig {

namespace {
constexpr int kMaxHead = 64 * 1024;
} // namespace

HttpRequestReader::State HttpRequestReader::feed(const QByteArray &bytes)
{
    m_request.head += bytes;
    if (!m_request.head.contains("\r\n\r\n"))
        return m_request.head.size() > kMaxHead ? State::Hopeless : State::Incomplete;
    return parse() ? State::Complete : State::Hopeless;
}

bool HttpRequestReader::parse()
{
    const QByteArrayList words = m_request.head.left(m_request.head.indexOf("\r\n")).split(' ');
    if (words.size() != 3 || !words.at(2).startsWith("HTTP/1."))
        return false;
    m_request.method = words.at(0);
    m_request.target = QString::fromLatin1(words.at(1));
    m_request.url = QUrl::fromEncoded(words.at(1), QUrl::StrictMode);
    return m_request.url.isValid() && m_request.url.path().startsWith(u'/');
}

QByteArray HttpAnswer::head() const
{
    if (!raw.isEmpty())
        return raw;
    return "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason + "\r\nContent-Type: " + contentType
        + "\r\nContent-Length: " + QByteArray::number(size()) + "\r\nConnection: close\r\n" + moreHead
        + "\r\n";
}

qint64 HttpAnswer::sentSize() const
{
    if (manner != Manner::Answer || !raw.isEmpty())
        return 0;
    return cutAfter < 0 ? size() : std::min(cutAfter, size());
}

} // namespace rig
