#include "tests/support/ScriptedHttpServer.h"

#include "tests/support/DeepCopy.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkProxy>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace {
using Answer = ScriptedHttpServer::Answer;
using Manner = ScriptedHttpServer::Manner;

constexpr qint64 kChunk = 64 * 1024;

QString pathOf(const QUrl &url)
{
    return url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::FullyEncoded);
}

QByteArray headOf(const Answer &answer)
{
    return QByteArrayLiteral("HTTP/1.1 ") + QByteArray::number(answer.status)
        + QByteArrayLiteral(" Scripted\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: ")
        + QByteArray::number(answer.size()) + QByteArrayLiteral("\r\nConnection: close\r\n") + answer.moreHead
        + QByteArrayLiteral("\r\n");
}
} // namespace

struct ScriptedHttpServer::Script {
    mutable QMutex mutex;
    QHash<QString, Answer> answers;
    QHash<QString, qint64> sent;
    QStringList released;
    QList<Request> requests;

    Answer take(const Request &request)
    {
        const QMutexLocker lock(&mutex);
        requests.append(request);
        return answers.value(pathOf(request.url),
                             page(QByteArrayLiteral("nobody programmed this path"), 404));
    }

    void countSent(const QString &path, qint64 bytes)
    {
        const QMutexLocker lock(&mutex);
        sent[path] += bytes;
    }

    bool isReleased(const QString &path) const
    {
        const QMutexLocker lock(&mutex);
        return released.contains(path);
    }
};

namespace {
using Script = ScriptedHttpServer::Script;

/// One request and its answer; lives as long as its socket.
class Conversation : public QObject {
public:
    Conversation(QTcpSocket *socket, std::shared_ptr<Script> script)
        : QObject(socket)
        , m_socket(socket)
        , m_script(std::move(script))
    {
        connect(socket, &QTcpSocket::readyRead, this, &Conversation::listen);
        connect(socket, &QTcpSocket::bytesWritten, this, &Conversation::onTaken);
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        listen();
    }

    void goOn()
    {
        if (!m_speaking)
            return;
        const qint64 end = endForNow();
        while (m_position < end && m_socket->bytesToWrite() < kChunk)
            sendUpTo(end);
        if (m_position == end && end == lastByte() && m_socket->bytesToWrite() == 0)
            m_socket->disconnectFromHost();
    }

private:
    void listen()
    {
        m_head += m_socket->readAll();
        if (m_heard || !m_head.contains("\r\n\r\n"))
            return;
        m_heard = true;
        const QList<QByteArray> words = m_head.left(m_head.indexOf("\r\n")).split(' ');
        const QUrl url = QUrl::fromEncoded(words.value(1));
        m_path = pathOf(url);
        m_answer = m_script->take({words.value(0), url, m_head});
        if (m_answer.manner == Manner::HangUp)
            m_socket->disconnectFromHost();
        else if (m_answer.manner == Manner::Answer)
            QTimer::singleShot(m_answer.delay, this, &Conversation::speak);
    }

    void speak()
    {
        m_speaking = true;
        m_socket->write(headOf(m_answer));
        goOn();
    }

    void onTaken(qint64 bytes)
    {
        m_script->countSent(m_path, bytes);
        goOn();
    }

    qint64 lastByte() const
    {
        return m_answer.cutAfter < 0 ? m_answer.size() : std::min(m_answer.cutAfter, m_answer.size());
    }

    qint64 endForNow() const
    {
        const bool held = m_answer.holdAfter >= 0 && !m_script->isReleased(m_path);
        return held ? std::min(m_answer.holdAfter, lastByte()) : lastByte();
    }

    void sendUpTo(qint64 end)
    {
        const qint64 from = m_position % m_answer.body.size();
        const qint64 length = std::min({kChunk, end - m_position, m_answer.body.size() - from});
        m_socket->write(m_answer.body.constData() + from, length);
        m_position += length;
    }

    QTcpSocket *m_socket;
    std::shared_ptr<Script> m_script;
    QByteArray m_head;
    QString m_path;
    Answer m_answer;
    qint64 m_position = 0;
    bool m_heard = false;
    bool m_speaking = false;
};

class Listener : public QTcpServer {
public:
    explicit Listener(const std::shared_ptr<Script> &script)
    {
        connect(this, &QTcpServer::newConnection, this, [this, script] {
            while (QTcpSocket *socket = nextPendingConnection())
                m_conversations.append(new Conversation(socket, script));
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("no port on loopback: %s", qPrintable(errorString()));
    }

    void goOn() const
    {
        for (const QPointer<Conversation> &conversation : m_conversations) {
            if (conversation)
                conversation->goOn();
        }
    }

private:
    QList<QPointer<Conversation>> m_conversations;
};
} // namespace

struct ScriptedHttpServer::Thread {
    QThread thread;
    QObject inside;
    Listener *listener = nullptr;

    template <typename Work> void run(Work work)
    {
        QMetaObject::invokeMethod(&inside, work, Qt::BlockingQueuedConnection);
    }

    explicit Thread(const std::shared_ptr<Script> &script)
    {
        inside.moveToThread(&thread);
        thread.start();
        run([this, script] { listener = new Listener(script); });
    }

    ~Thread()
    {
        run([this] { delete listener; });
        thread.quit();
        thread.wait();
    }
};

ScriptedHttpServer::ScriptedHttpServer()
    : m_script(std::make_shared<Script>())
    , m_thread(std::make_unique<Thread>(m_script))
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"),
                                                     m_thread->listener->serverPort()));
}

ScriptedHttpServer::~ScriptedHttpServer()
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

Answer ScriptedHttpServer::version(const QByteArray &number, const QByteArray &notes,
                                   const QByteArray &englishNotes)
{
    const QJsonObject object{{QStringLiteral("f_ver"), QString::fromUtf8(number)},
                             {QStringLiteral("f_remark"), QString::fromUtf8(notes)},
                             {QStringLiteral("f_remark_en"), QString::fromUtf8(englishNotes)}};
    return page(QJsonDocument(QJsonArray{object}).toJson());
}

Answer ScriptedHttpServer::page(const QByteArray &body, int status)
{
    Answer answer;
    answer.body = body;
    answer.status = status;
    return answer;
}

Answer ScriptedHttpServer::silence()
{
    Answer answer;
    answer.manner = Manner::Silence;
    return answer;
}

Answer ScriptedHttpServer::hangUp()
{
    Answer answer;
    answer.manner = Manner::HangUp;
    return answer;
}

void ScriptedHttpServer::answer(const QString &path, const Answer &answer)
{
    const QMutexLocker lock(&m_script->mutex);
    m_script->answers.insert(path, answer);
}

void ScriptedHttpServer::release(const QString &path)
{
    {
        const QMutexLocker lock(&m_script->mutex);
        m_script->released.append(path);
    }
    m_thread->run([this] { m_thread->listener->goOn(); });
}

QList<ScriptedHttpServer::Request> ScriptedHttpServer::requests() const
{
    const QMutexLocker lock(&m_script->mutex);
    QList<Request> copies;
    for (const Request &request : std::as_const(m_script->requests))
        copies.append({deepCopy(request.method), QUrl::fromEncoded(deepCopy(request.url.toEncoded())),
                       deepCopy(request.head)});
    return copies;
}

QStringList ScriptedHttpServer::paths() const
{
    QStringList paths;
    for (const Request &request : requests())
        paths.append(pathOf(request.url));
    return paths;
}

qint64 ScriptedHttpServer::bytesSent(const QString &path) const
{
    const QMutexLocker lock(&m_script->mutex);
    return m_script->sent.value(path);
}

void ScriptedHttpServer::clear()
{
    const QMutexLocker lock(&m_script->mutex);
    m_script->answers.clear();
    m_script->sent.clear();
    m_script->released.clear();
    m_script->requests.clear();
}
