// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/HttpMessages.h"

#include <QList>
#include <QObject>
#include <QTcpServer>

#include <functional>

class QTcpSocket;

namespace rig {

/// One request and its answer; lives as long as its connection.
class HttpConversation : public QObject {
    Q_OBJECT

public:
    /// Called once the request is complete.
    using Answerer = std::function<HttpAnswer(HttpConversation &conversation)>;

    HttpConversation(QTcpSocket *socket, const Answerer &answerer);

    const HttpRequest &request() const { return m_reader.request(); }
    void release(); ///< what is held of the answer goes out

Q_SIGNALS:
    void taken(qint64 bytes); ///< the system has taken over so many bytes more of the answer
    void delivered(); ///< it has taken over all of them

private:
    void receive();
    void speak();
    void drip();
    void goOn();
    qint64 endForNow() const;
    void sendUpTo(qint64 end);

    QTcpSocket *m_socket;
    Answerer m_answerer;
    HttpRequestReader m_reader;
    HttpAnswer m_answer;
    bool m_speaking = false;
    qint64 m_position = 0; // in the body
    qint64 m_dripped = 0; // a dripping body may go out up to here
};

/// Answers one request on each connection. Used on the thread that it lives on.
class HttpServer : public QTcpServer {
    Q_OBJECT

public:
    explicit HttpServer(const HttpConversation::Answerer &answerer);

    /// Those whose connection is open.
    QList<HttpConversation *> conversations() const { return findChildren<HttpConversation *>(); }
};

} // namespace rig
