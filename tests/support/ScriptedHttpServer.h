// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/HttpMessages.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

/// An HTTP server on loopback, on a thread of its own, that answers every path as the test says. While it
/// exists it is the application's HTTP proxy, so that a request to any host arrives here; a path that nobody
/// programmed gets status 404. A path is given with its query and without a host:
/// "/upinfo_test.aspx?proj_name=R2MCU".
///
///     ScriptedHttpServer server;
///     server.answer(QStringLiteral("/upinfo_test.aspx?proj_name=R2MCU"),
///     ScriptedHttpServer::version("1.2.3", "中文", "English"));
///
/// Every function is thread-safe. One at a time.
class ScriptedHttpServer {
public:
    using Answer = rig::HttpAnswer;
    using Request = rig::HttpRequest;

    ScriptedHttpServer();
    ~ScriptedHttpServer();
    ScriptedHttpServer(const ScriptedHttpServer &) = delete;
    ScriptedHttpServer &operator=(const ScriptedHttpServer &) = delete;

    /// The update server's answer to a version query: a list of one object.
    static Answer version(const QByteArray &number, const QByteArray &notes = {},
                          const QByteArray &englishNotes = {});
    static Answer page(const QByteArray &body, int status = 200);
    static Answer compressedPage(const QByteArray &body);
    static Answer silence();
    static Answer hangUp();

    /// Programs the answer to every later request of \a path.
    void answer(const QString &path, const Answer &answer);
    /// Lets the held answers of \a path go on, those that run and those to come.
    void release(const QString &path);

    /// The requests since the last clear(), in the order of their arrival.
    QList<Request> requests() const;
    /// The same, each as path and query.
    QStringList paths() const;
    /// How many bytes of \a path's answers the clients' machine has taken over, heads included.
    qint64 bytesSent(const QString &path) const;
    /// Forgets every answer and every request.
    void clear();

private:
    struct Script;
    std::unique_ptr<Script> m_script;
};
