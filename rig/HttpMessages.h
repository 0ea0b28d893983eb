// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>

namespace rig {

/// What a client asked for.
struct HttpRequest {
    QByteArray method;
    QString target; ///< as written: a path, or a whole address when the client takes the server for a proxy
    QUrl url; ///< the same, taken apart
    QByteArray head; ///< every line, line ends as they came
};

/// Collects bytes until a request's head is complete. Bodies are not awaited: no request of this protocol has
/// one.
class HttpRequestReader {
public:
    enum class State { Incomplete, Complete, Hopeless };

    State feed(const QByteArray &bytes);
    const HttpRequest &request() const { return m_request; }

private:
    bool parse();

    HttpRequest m_request;
};

/// An answer and the manner in which it is given.
struct HttpAnswer {
    enum class Manner {
        Answer,
        Silence, ///< takes the request and never says a word
        HangUp, ///< takes the request and closes the connection
    };

    QByteArray body;
    int status = 200;
    QByteArray reason = "OK"; ///< the words behind the status
    QByteArray contentType;
    QByteArray moreHead; ///< further lines of the head, each with its line end
    QByteArray raw; ///< goes out in place of head and body when not empty
    std::chrono::milliseconds delay{0}; ///< from the request to the first byte
    std::chrono::milliseconds dripTime{0}; ///< the body goes out in many small pieces for so long
    int repeat = 1; ///< the body is sent this many times over, made while it is sent: large answers cost
                    ///< no memory
    qint64 cutAfter = -1; ///< the connection closes after so many bytes of the body; -1: sent whole
    qint64 holdAfter = -1; ///< so many bytes of the body go out until it is released; -1: sent whole
    Manner manner = Manner::Answer;

    QByteArray head() const; ///< what goes out before the body
    qint64 size() const { return qint64(body.size()) * repeat; } ///< what the head announces
    qint64 sentSize() const; ///< how much of the body goes out in the end
};

} // namespace rig
