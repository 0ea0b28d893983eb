// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/UpdateServer.h"

#include "rig/FirmwareImage.h"
#include "rig/HttpServer.h"
#include "rig/ServerAnswer.h"

#include <QMutexLocker>
#include <QNetworkProxy>
#include <QUrlQuery>

namespace rig {

namespace {

constexpr std::chrono::milliseconds kUnanswered{-1};

std::optional<RequestSubject> subjectOf(const HttpRequest &request)
{
    const QString path = request.url.path();
    const QUrlQuery query(request.url);
    const QString project = query.queryItemValue(QStringLiteral("proj_name"));
    const QString image = query.queryItemValue(QStringLiteral("f_sn"));
    for (const ChipIdentity &identity : allIdentities()) {
        if (path == u"/upinfo_test.aspx" && project == QLatin1StringView(identity.project))
            return RequestSubject{RequestKind::VersionQuery, identity.model, identity.chip, {}};
        if (path == u"/dnfile_test.aspx" && image == QString::number(identity.imageNumber))
            return RequestSubject{RequestKind::Download, identity.model, identity.chip, {}};
    }
    return {};
}

} // namespace

UpdateServer::UpdateServer(RigThread &thread, FaultBoard &faults, Journal &journal)
    : m_thread(thread)
    , m_faults(faults)
    , m_journal(journal)
{
    m_thread.runAndWait([this] {
        m_http = new HttpServer([this](HttpConversation &conversation) { return serve(conversation); });
        connect(&m_faults, &FaultBoard::changed, m_http, [this] { followRefusal(); });
    });
}

UpdateServer::~UpdateServer()
{
    if (port() != 0 && QNetworkProxy::applicationProxy().port() == port())
        QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_thread.runAndWait([this] { delete m_http; });
}

bool UpdateServer::start()
{
    bool listening = false;
    m_thread.runAndWait([&] { listening = listen(); });
    return listening;
}

bool UpdateServer::listen()
{
    const bool listening = m_http->listen(QHostAddress::LocalHost, m_port);
    m_port = m_http->serverPort();
    return listening;
}

void UpdateServer::followRefusal()
{
    const bool refuse = m_faults.isArmed(Fault::ServerRefused);
    if (refuse && m_http->isListening())
        m_http->close();
    else if (!refuse && !m_http->isListening() && m_port != 0)
        listen();
}

HttpAnswer UpdateServer::serve(HttpConversation &conversation)
{
    const HttpRequest &request = conversation.request();
    std::optional<RequestSubject> subject = subjectOf(request);
    if (!subject || request.method != "GET") {
        m_journal.record(QStringLiteral("server"), QStringLiteral("no such thing: ") + request.target);
        return errorPage(404, "Not Found");
    }
    subject->version = version(subject->model, subject->chip);
    const HttpAnswer answer = answerTo(*subject, request.target.toLatin1(), m_faults);
    const QByteArray sent = answer.body.left(answer.sentSize());
    const ServedRequest served{m_journal.now(),
                               kUnanswered,
                               subject->kind,
                               subject->model,
                               subject->chip,
                               request.target,
                               sent.isEmpty() ? QByteArray() : sha256(sent)};
    const int index = note(served);
    connect(&conversation, &HttpConversation::delivered, m_http, [this, index] { markAnswered(index); });
    m_journal.record(QStringLiteral("server"), QStringLiteral("asked for ") + request.target);
    Q_EMIT requestArrived(served);
    return answer;
}

int UpdateServer::note(const ServedRequest &request)
{
    const QMutexLocker lock(&m_mutex);
    m_requests.append(request);
    return m_forgotten + int(m_requests.size()) - 1;
}

void UpdateServer::markAnswered(int index)
{
    const QMutexLocker lock(&m_mutex);
    if (index >= m_forgotten)
        m_requests[index - m_forgotten].answered = m_journal.now();
}

quint16 UpdateServer::port() const
{
    return m_port;
}

void UpdateServer::becomeApplicationProxy()
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), port()));
}

void UpdateServer::setVersion(Model model, Chip chip, const QVersionNumber &version)
{
    const QMutexLocker lock(&m_mutex);
    m_versions.insert({model, chip}, version);
}

void UpdateServer::setVersion(Chip chip, const QVersionNumber &version)
{
    for (const ModelIdentity &row : modelTable())
        setVersion(row.model, chip, version);
}

QVersionNumber UpdateServer::version(Model model, Chip chip) const
{
    const QMutexLocker lock(&m_mutex);
    return m_versions.value({model, chip}, QVersionNumber(1, 1, 1));
}

QByteArray UpdateServer::image(Model model, Chip chip) const
{
    return buildImage({model, chip, version(model, chip)});
}

QList<ServedRequest> UpdateServer::requests() const
{
    const QMutexLocker lock(&m_mutex);
    return m_requests;
}

void UpdateServer::forgetRequests()
{
    const QMutexLocker lock(&m_mutex);
    m_forgotten += int(m_requests.size());
    m_requests.clear();
}

} // namespace rig
