// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/ScriptedHttpServer.h"

#include "rig/HttpServer.h"
#include "rig/RigThread.h"
#include "tests/support/DeepCopy.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkProxy>

using rig::HttpConversation;
using Answer = ScriptedHttpServer::Answer;

namespace {
QString pathOf(const QUrl &url)
{
    return url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::FullyEncoded);
}
} // namespace

struct ScriptedHttpServer::Script {
    mutable QMutex mutex;
    QHash<QString, Answer> answers;
    QHash<QString, qint64> sent;
    QStringList released;
    QList<Request> requests;
    rig::RigThread thread;
    rig::HttpServer *server = nullptr; // lives on the thread

    Script()
    {
        thread.runAndWait([this] {
            server
                = new rig::HttpServer([this](HttpConversation &conversation) { return take(conversation); });
            if (!server->listen(QHostAddress::LocalHost))
                qFatal("no port on loopback: %s", qPrintable(server->errorString()));
        });
    }

    ~Script()
    {
        thread.runAndWait([this] { delete server; });
    }

    Answer take(HttpConversation &conversation)
    {
        const Request &request = conversation.request();
        const QString path = pathOf(request.url);
        QObject::connect(&conversation, &HttpConversation::taken, server,
                         [this, path](qint64 bytes) { countSent(path, bytes); });
        const QMutexLocker lock(&mutex);
        requests.append(request);
        Answer answer = answers.value(path, page(QByteArrayLiteral("nobody programmed this path"), 404));
        if (released.contains(path))
            answer.holdAfter = -1;
        return answer;
    }

    void countSent(const QString &path, qint64 bytes)
    {
        const QMutexLocker lock(&mutex);
        sent[path] += bytes;
    }

    void goOn(const QString &path) const
    {
        for (HttpConversation *conversation : server->conversations()) {
            if (pathOf(conversation->request().url) == path)
                conversation->release();
        }
    }
};

ScriptedHttpServer::ScriptedHttpServer()
    : m_script(std::make_unique<Script>())
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_script->server->serverPort()));
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
    answer.reason = QByteArrayLiteral("Scripted");
    answer.contentType = QByteArrayLiteral("text/plain; charset=utf-8");
    return answer;
}

Answer ScriptedHttpServer::compressedPage(const QByteArray &body)
{
    constexpr int kLengthOfQt = 4; // stands before what others know as zlib's format
    Answer answer = page(qCompress(body).sliced(kLengthOfQt));
    answer.moreHead = QByteArrayLiteral("Content-Encoding: deflate\r\n");
    return answer;
}

Answer ScriptedHttpServer::silence()
{
    Answer answer;
    answer.manner = Answer::Manner::Silence;
    return answer;
}

Answer ScriptedHttpServer::hangUp()
{
    Answer answer;
    answer.manner = Answer::Manner::HangUp;
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
    m_script->thread.runAndWait([this, &path] { m_script->goOn(path); });
}

QList<ScriptedHttpServer::Request> ScriptedHttpServer::requests() const
{
    const QMutexLocker lock(&m_script->mutex);
    QList<Request> copies;
    for (const Request &request : std::as_const(m_script->requests))
        copies.append({deepCopy(request.method), deepCopy(request.target),
                       QUrl::fromEncoded(deepCopy(request.url.toEncoded())), deepCopy(request.head)});
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
