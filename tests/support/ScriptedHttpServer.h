#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>
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
    enum class Manner {
        Answer,
        Silence, ///< takes the request and never says a word
        HangUp, ///< takes the request and closes the connection
    };

    struct Answer {
        QByteArray body;
        int status = 200;
        QByteArray moreHead; ///< further lines of the head, each with its line end
        std::chrono::milliseconds delay{0}; ///< from the request to the first byte
        int repeat = 1; ///< the body is sent this many times over, made while it is sent: large answers cost
                        ///< no memory
        qint64 cutAfter = -1; ///< the connection closes after so many bytes of the body; -1: sent whole
        qint64 holdAfter = -1; ///< so many bytes of the body go out, the rest after release(); -1: sent whole
        Manner manner = Manner::Answer;

        qint64 size() const { return qint64(body.size()) * repeat; }
    };

    struct Request {
        QByteArray method;
        QUrl url; ///< as asked for, host included
        QByteArray head; ///< every line, line ends as they came
    };

    ScriptedHttpServer();
    ~ScriptedHttpServer();
    ScriptedHttpServer(const ScriptedHttpServer &) = delete;
    ScriptedHttpServer &operator=(const ScriptedHttpServer &) = delete;

    /// The update server's answer to a version query: a list of one object.
    static Answer version(const QByteArray &number, const QByteArray &notes = {},
                          const QByteArray &englishNotes = {});
    static Answer page(const QByteArray &body, int status = 200);
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

    struct Script;

private:
    std::shared_ptr<Script> m_script;
    struct Thread;
    std::unique_ptr<Thread> m_thread;
};
