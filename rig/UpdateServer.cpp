#include "rig/UpdateServer.h"

#include "rig/FirmwareImage.h"
#include "rig/HttpRequest.h"
#include "rig/ServerAnswer.h"

#include <QMap>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkProxy>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <atomic>

namespace rig {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kDrippingTime{4000};
constexpr int kDrops = 40;
constexpr milliseconds kUnanswered{-1};

std::optional<RequestSubject> subjectOf(const HttpRequest &request)
{
    const QString project = request.query.queryItemValue(QStringLiteral("proj_name"));
    const QString image = request.query.queryItemValue(QStringLiteral("f_sn"));
    for (const ChipIdentity &identity : allIdentities()) {
        if (request.path == u"/upinfo_test.aspx" && project == QLatin1StringView(identity.project))
            return RequestSubject{RequestKind::VersionQuery, identity.model, identity.chip, {}};
        if (request.path == u"/dnfile_test.aspx" && image == QString::number(identity.imageNumber))
            return RequestSubject{RequestKind::Download, identity.model, identity.chip, {}};
    }
    return {};
}

} // namespace

// What the server offers and what it was asked.
struct UpdateServer::Shelf {
    using Key = std::pair<Model, Chip>;

    mutable QMutex mutex;
    QMap<Key, QVersionNumber> versions;
    std::atomic<quint16> port{0};
    QList<ServedRequest> requests;
    int forgotten = 0; // requests that were dropped from the front of the list

    QVersionNumber version(Model model, Chip chip) const
    {
        return versions.value({model, chip}, QVersionNumber(1, 1, 1));
    }

    int add(const ServedRequest &request)
    {
        const QMutexLocker lock(&mutex);
        requests.append(request);
        return forgotten + int(requests.size()) - 1;
    }

    void markAnswered(int index, milliseconds at)
    {
        const QMutexLocker lock(&mutex);
        if (index >= forgotten)
            requests[index - forgotten].answered = at;
    }
};

// The server's side on the rig's thread.
class UpdateServer::Listener : public QObject {
public:
    Listener(UpdateServer &server, FaultBoard &faults, Journal &journal, std::shared_ptr<Shelf> shelf)
        : m_server(server)
        , m_faults(faults)
        , m_journal(journal)
        , m_shelf(std::move(shelf))
    {
        connect(&m_tcp, &QTcpServer::newConnection, this, &Listener::acceptAll);
        connect(&faults, &FaultBoard::changed, this, &Listener::followRefusal);
    }

    bool listen()
    {
        const bool listening = m_tcp.listen(QHostAddress::LocalHost, m_shelf->port);
        m_shelf->port = m_tcp.serverPort();
        return listening;
    }

private:
    void followRefusal()
    {
        const bool refuse = m_faults.isArmed(Fault::ServerRefused);
        if (refuse && m_tcp.isListening())
            m_tcp.close();
        else if (!refuse && !m_tcp.isListening() && m_shelf->port != 0)
            listen();
    }

    void acceptAll();
    void receive(QTcpSocket *socket, HttpRequestReader &reader);
    void serve(QTcpSocket *socket, const HttpRequest &request);
    void deliver(QTcpSocket *socket, const ServerAnswer &answer, int index);
    void drip(QTcpSocket *socket, const QByteArray &rest, int index, int dropSize);
    void finish(QTcpSocket *socket, int index);

    UpdateServer &m_server;
    FaultBoard &m_faults;
    Journal &m_journal;
    std::shared_ptr<Shelf> m_shelf;
    QTcpServer m_tcp;
};

void UpdateServer::Listener::acceptAll()
{
    while (QTcpSocket *socket = m_tcp.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        auto reader = std::make_shared<HttpRequestReader>();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket, reader] { receive(socket, *reader); });
    }
}

void UpdateServer::Listener::receive(QTcpSocket *socket, HttpRequestReader &reader)
{
    const HttpRequestReader::State state = reader.feed(socket->readAll());
    if (state == HttpRequestReader::State::Incomplete)
        return;
    // One request a connection: what a client sends after it is not read.
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    if (state == HttpRequestReader::State::Complete)
        serve(socket, reader.request());
    else
        socket->abort();
}

void UpdateServer::Listener::serve(QTcpSocket *socket, const HttpRequest &request)
{
    std::optional<RequestSubject> subject = subjectOf(request);
    if (!subject || request.method != "GET") {
        m_journal.record(QStringLiteral("server"), QStringLiteral("no such thing: ") + request.target);
        deliver(socket, errorPage("404 Not Found"), -1);
        return;
    }
    {
        const QMutexLocker lock(&m_shelf->mutex);
        subject->version = m_shelf->version(subject->model, subject->chip);
    }
    const ServerAnswer answer = answerTo(*subject, request.target.toLatin1(), m_faults);
    const QByteArray body = answer.sentBody();
    ServedRequest served{m_journal.now(),
                         kUnanswered,
                         subject->kind,
                         subject->model,
                         subject->chip,
                         request.target,
                         body.isEmpty() ? QByteArray() : sha256(body)};
    const int index = m_shelf->add(served);
    m_journal.record(QStringLiteral("server"), QStringLiteral("asked for ") + request.target);
    Q_EMIT m_server.requestArrived(served);
    const QPointer<QTcpSocket> waiting = socket;
    QTimer::singleShot(answer.delay, Qt::PreciseTimer, this, [this, waiting, answer, index] {
        if (waiting)
            deliver(waiting, answer, index);
    });
}

void UpdateServer::Listener::deliver(QTcpSocket *socket, const ServerAnswer &answer, int index)
{
    switch (answer.delivery) {
    case ServerAnswer::Delivery::Never:
        return;
    case ServerAnswer::Delivery::HangUp:
        socket->abort();
        return;
    case ServerAnswer::Delivery::Dripping: {
        socket->write(answer.head());
        const QByteArray body = answer.sentBody();
        drip(socket, body, index, int(body.size()) / kDrops + 1);
        return;
    }
    case ServerAnswer::Delivery::Whole:
    case ServerAnswer::Delivery::HalfThenHangUp:
        socket->write(answer.raw.isEmpty() ? answer.head() + answer.sentBody() : answer.raw);
        finish(socket, index);
    }
}

void UpdateServer::Listener::drip(QTcpSocket *socket, const QByteArray &rest, int index, int dropSize)
{
    socket->write(rest.left(dropSize));
    if (rest.size() <= dropSize) {
        finish(socket, index);
        return;
    }
    QTimer::singleShot(
        kDrippingTime / kDrops, Qt::PreciseTimer, socket,
        [this, socket, rest = rest.mid(dropSize), index, dropSize] { drip(socket, rest, index, dropSize); });
}

void UpdateServer::Listener::finish(QTcpSocket *socket, int index)
{
    const auto conclude = [this, socket, index] {
        if (socket->bytesToWrite() > 0)
            return;
        if (index >= 0)
            m_shelf->markAnswered(index, m_journal.now());
        socket->disconnectFromHost();
    };
    connect(socket, &QTcpSocket::bytesWritten, this, conclude);
}

UpdateServer::UpdateServer(RigThread &thread, FaultBoard &faults, Journal &journal)
    : m_shelf(std::make_shared<Shelf>())
    , m_thread(thread)
{
    m_thread.runAndWait([&] { m_listener = new Listener(*this, faults, journal, m_shelf); });
}

UpdateServer::~UpdateServer()
{
    if (port() != 0 && QNetworkProxy::applicationProxy().port() == port())
        QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_thread.runAndWait([this] { delete m_listener; });
}

bool UpdateServer::start()
{
    bool listening = false;
    m_thread.runAndWait([&] { listening = m_listener->listen(); });
    return listening;
}

quint16 UpdateServer::port() const
{
    return m_shelf->port;
}

void UpdateServer::becomeApplicationProxy()
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), port()));
}

void UpdateServer::setVersion(Model model, Chip chip, const QVersionNumber &version)
{
    const QMutexLocker lock(&m_shelf->mutex);
    m_shelf->versions.insert({model, chip}, version);
}

void UpdateServer::setVersion(Chip chip, const QVersionNumber &version)
{
    for (const Model model : {Model::R1, Model::R2})
        setVersion(model, chip, version);
}

QVersionNumber UpdateServer::version(Model model, Chip chip) const
{
    const QMutexLocker lock(&m_shelf->mutex);
    return m_shelf->version(model, chip);
}

QByteArray UpdateServer::image(Model model, Chip chip) const
{
    const QMutexLocker lock(&m_shelf->mutex);
    return buildImage({model, chip, m_shelf->version(model, chip)});
}

QList<ServedRequest> UpdateServer::requests() const
{
    const QMutexLocker lock(&m_shelf->mutex);
    return m_shelf->requests;
}

void UpdateServer::forgetRequests()
{
    const QMutexLocker lock(&m_shelf->mutex);
    m_shelf->forgotten += int(m_shelf->requests.size());
    m_shelf->requests.clear();
}

} // namespace rig
