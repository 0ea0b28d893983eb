#pragma once

#include <QByteArray>
#include <QUrlQuery>

#include <optional>

namespace rig {

/// The line of a request that the server goes by.
struct HttpRequest {
    QByteArray method;
    QString target; ///< as written: a path, or a whole address when the client takes the server for a proxy
    QString path; ///< without host and query
    QUrlQuery query;
};

/// Collects bytes until a request's head is complete. Bodies are not awaited: no request of this protocol has
/// one.
class HttpRequestReader {
public:
    enum class State { Incomplete, Complete, Hopeless };

    State feed(const QByteArray &bytes);
    const HttpRequest &request() const { return m_request; }

private:
    bool parse(const QByteArray &line);

    QByteArray m_received;
    HttpRequest m_request;
};

} // namespace rig
