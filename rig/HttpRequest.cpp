#include "rig/HttpRequest.h"

#include <QUrl>

namespace rig {

namespace {
constexpr int kMaxHead = 64 * 1024;
} // namespace

HttpRequestReader::State HttpRequestReader::feed(const QByteArray &bytes)
{
    m_received += bytes;
    if (m_received.indexOf("\r\n\r\n") < 0)
        return m_received.size() > kMaxHead ? State::Hopeless : State::Incomplete;
    return parse(m_received.left(m_received.indexOf("\r\n"))) ? State::Complete : State::Hopeless;
}

bool HttpRequestReader::parse(const QByteArray &line)
{
    const QByteArrayList words = line.split(' ');
    if (words.size() != 3 || !words.at(2).startsWith("HTTP/1."))
        return false;
    m_request.method = words.at(0);
    m_request.target = QString::fromLatin1(words.at(1));
    const QUrl address(m_request.target, QUrl::StrictMode);
    m_request.path = address.path();
    m_request.query = QUrlQuery(address);
    return address.isValid() && m_request.path.startsWith(QLatin1Char('/'));
}

} // namespace rig
