#include "rig/BootLoaderSession.h"

#include "rig/ToolWire.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace rig {

namespace {

int productIdIn(const QStringList &arguments)
{
    const qsizetype option = arguments.indexOf(QStringLiteral("--pid"));
    return arguments.value(option < 0 ? arguments.size() : option + 1).toInt(nullptr, 16);
}

} // namespace

struct BootLoaderSession::Message {
    const char *name;
    qsizetype words; // at least so many, the name included
    void (BootLoaderSession::*handle)(const QStringList &words);
};

const QList<BootLoaderSession::Message> &BootLoaderSession::messages()
{
    static const QList<Message> table{
        {wire::kHello, 2, &BootLoaderSession::hello},   {wire::kFind, 2, &BootLoaderSession::find},
        {wire::kAttach, 3, &BootLoaderSession::attach}, {wire::kReady, 1, &BootLoaderSession::ready},
        {wire::kErase, 2, &BootLoaderSession::erase},   {wire::kWrite, 3, &BootLoaderSession::beginBlock},
        {wire::kDigest, 1, &BootLoaderSession::digest}, {wire::kRestart, 1, &BootLoaderSession::restart},
    };
    return table;
}

BootLoaderSession::BootLoaderSession(QLocalSocket *socket, BootLoaderPort &port,
                                     const SimulatedDevice &device, FaultBoard &faults,
                                     const Journal &journal)
    : m_socket(socket)
    , m_port(port)
    , m_device(device)
    , m_faults(faults)
    , m_journal(journal)
{
    m_socket->setParent(this);
    connect(m_socket, &QLocalSocket::readyRead, this, &BootLoaderSession::receive);
    connect(m_socket, &QLocalSocket::disconnected, this, &BootLoaderSession::close);
}

void BootLoaderSession::receive()
{
    while (true) {
        if (m_blockSize > 0) {
            if (m_socket->bytesAvailable() < m_blockSize)
                return;
            endBlock(m_socket->read(std::exchange(m_blockSize, 0)));
        } else if (m_socket->canReadLine()) {
            if (!handleLine(m_socket->readLine())) {
                m_socket->abort();
                return;
            }
        } else {
            if (m_socket->bytesAvailable() > wire::kMaxLine)
                m_socket->abort();
            return;
        }
    }
}

bool BootLoaderSession::handleLine(const QByteArray &line)
{
    const QStringList words = wire::decode(line);
    if (m_greeted && m_port.takesGreetingsOnly())
        return false;
    for (const Message &message : messages()) {
        if (words.first() == QLatin1StringView(message.name) && words.size() >= message.words) {
            (this->*message.handle)(words);
            return true;
        }
    }
    return false;
}

void BootLoaderSession::close()
{
    m_run.running = false;
    m_run.finished = m_greeted && chip().restarts() > m_restartsBefore;
    m_run.ended = m_journal.now();
    Q_EMIT ended();
    deleteLater();
}

void BootLoaderSession::hello(const QStringList &words)
{
    m_run.started = m_journal.now();
    m_run.processId = words.at(1).toLongLong();
    m_run.arguments = words.sliced(2);
    m_run.productId = productIdIn(m_run.arguments);
    if (const ChipIdentity *identity = identityWith(m_run.productId)) {
        m_run.model = identity->model;
        m_run.chip = identity->chip;
    }
    m_greeted = true;
    m_restartsBefore = chip().restarts();
    QStringList answer{QLatin1StringView(wire::kFaults)};
    for (const Fault fault : m_faults.strikesOf(FaultPlace::Tool, m_run.chip))
        answer.append(nameOf(fault));
    Q_EMIT greeted();
    reply(answer);
}

bool BootLoaderSession::isOnBus(int productId) const
{
    const QList<BusInterface> faces = m_device.interfaces();
    return std::any_of(faces.begin(), faces.end(),
                       [productId](const BusInterface &face) { return face.productId == productId; });
}

void BootLoaderSession::find(const QStringList &words)
{
    reply(isOnBus(words.at(1).toInt(nullptr, 16)));
}

void BootLoaderSession::attach(const QStringList &words)
{
    reply(isOnBus(words.at(1).toInt(nullptr, 16)) && chip().enter(words.at(2) == u"1"));
}

void BootLoaderSession::ready(const QStringList &)
{
    reply(chip().isReady());
}

void BootLoaderSession::erase(const QStringList &words)
{
    const bool erased = chip().erase(words.at(1).toInt());
    QTimer::singleShot(BootLoader::kEraseTime, this, [this, erased] { reply(erased); });
}

void BootLoaderSession::beginBlock(const QStringList &words)
{
    m_blockOffset = words.at(1).toInt();
    m_blockSize = words.at(2).toInt();
    if (m_blockSize <= 0 || m_blockSize > wire::kMaxBlock)
        m_socket->abort();
}

void BootLoaderSession::endBlock(const QByteArray &block)
{
    reply(chip().write(m_blockOffset, block));
}

void BootLoaderSession::digest(const QStringList &)
{
    reply({QLatin1StringView(wire::kDigest), QString::fromLatin1(chip().digest())});
}

void BootLoaderSession::restart(const QStringList &)
{
    reply(chip().restart());
}

BootLoader &BootLoaderSession::chip()
{
    return m_port.at(m_run.chip);
}

void BootLoaderSession::reply(bool yes)
{
    reply({QLatin1StringView(yes ? wire::kYes : wire::kNo)});
}

void BootLoaderSession::reply(const QStringList &words)
{
    m_socket->write(wire::encode(words));
}

} // namespace rig
