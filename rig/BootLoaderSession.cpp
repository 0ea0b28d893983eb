// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderSession.h"

#include "rig/ToolWire.h"

#include <QTimer>

#include <algorithm>

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
    bool (BootLoaderSession::*handle)(const QStringList &words);
};

const QList<BootLoaderSession::Message> &BootLoaderSession::messages()
{
    static const QList<Message> table{
        {wire::kHello, 2, &BootLoaderSession::hello},
        {wire::kFind, 2, &BootLoaderSession::find},
        {wire::kReport, 2, &BootLoaderSession::report},
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
    while (m_socket->canReadLine()) {
        if (!handleLine(m_socket->readLine())) {
            m_socket->abort();
            return;
        }
    }
    if (m_socket->bytesAvailable() > wire::kMaxLine)
        m_socket->abort();
}

bool BootLoaderSession::handleLine(const QByteArray &line)
{
    const QStringList words = wire::decode(line);
    if (m_responder && m_port.takesGreetingsOnly())
        return false;
    for (const Message &message : messages()) {
        if (words.first() == QLatin1StringView(message.name) && words.size() >= message.words)
            return (this->*message.handle)(words);
    }
    return false;
}

void BootLoaderSession::close()
{
    m_run.running = false;
    m_run.finished = m_responder && chip().restarts() > m_restartsBefore;
    m_run.ended = m_journal.now();
    Q_EMIT ended();
    deleteLater();
}

// A connection is one run: a second greeting would leave the first one running for ever.
bool BootLoaderSession::hello(const QStringList &words)
{
    if (m_responder)
        return false;
    m_run.started = m_journal.now();
    m_run.processId = words.at(1).toLongLong();
    m_run.arguments = words.sliced(2);
    m_run.productId = productIdIn(m_run.arguments);
    if (const ChipIdentity *identity = identityWith(m_run.productId)) {
        m_run.model = identity->model;
        m_run.chip = identity->chip;
    }
    m_responder.emplace(chip());
    m_restartsBefore = chip().restarts();
    QStringList answer{QLatin1StringView(wire::kFaults)};
    for (const Fault fault : m_faults.strikesOf(FaultPlace::Tool, m_run.chip))
        answer.append(nameOf(fault));
    Q_EMIT greeted();
    reply(answer);
    return true;
}

bool BootLoaderSession::find(const QStringList &words)
{
    const int productId = words.at(1).toInt(nullptr, 16);
    const QList<BusInterface> faces = m_device.interfaces();
    const bool found = std::any_of(faces.begin(), faces.end(), [productId](const BusInterface &face) {
        return face.productId == productId;
    });
    reply({QLatin1StringView(found ? wire::kYes : wire::kNo)});
    return true;
}

bool BootLoaderSession::report(const QStringList &words)
{
    const QByteArray report = QByteArray::fromHex(words.at(1).toLatin1());
    if (!m_responder || !decodeBootLoaderReport(report))
        return false;
    const BootLoaderAnswer answer = m_responder->answer(report);
    // What takes no time is answered at once: an image is a hundred blocks.
    const auto pass = [this, bytes = answer.report] {
        reply({QLatin1StringView(wire::kReport), QString::fromLatin1(bytes.toHex())});
    };
    if (answer.after.count() > 0)
        QTimer::singleShot(answer.after, this, pass);
    else if (!answer.report.isEmpty())
        pass();
    return true;
}

BootLoader &BootLoaderSession::chip()
{
    return m_port.at(m_run.chip);
}

void BootLoaderSession::reply(const QStringList &words)
{
    m_socket->write(wire::encode(words));
}

} // namespace rig
