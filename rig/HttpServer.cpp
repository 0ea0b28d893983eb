// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/HttpServer.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>

namespace rig {

namespace {
constexpr qint64 kChunk = qint64(64) * 1024;
constexpr int kDrops = 40;
/// Clients open connections that they may need, and keep those that they did not.
constexpr std::chrono::seconds kRequestLimit{10};
} // namespace

HttpConversation::HttpConversation(QTcpSocket *socket, const Answerer &answerer)
    : QObject(socket)
    , m_socket(socket)
    , m_answerer(answerer)
{
    connect(socket, &QTcpSocket::readyRead, this, &HttpConversation::receive);
    connect(socket, &QTcpSocket::bytesWritten, this, &HttpConversation::taken);
    connect(socket, &QTcpSocket::bytesWritten, this, &HttpConversation::goOn);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(kRequestLimit, this, [this] {
        if (request().method.isEmpty())
            m_socket->abort();
    });
}

void HttpConversation::receive()
{
    const HttpRequestReader::State state = m_reader.feed(m_socket->readAll());
    if (state == HttpRequestReader::State::Incomplete)
        return;
    // One request a connection: what a client sends after it is not read.
    disconnect(m_socket, &QTcpSocket::readyRead, this, nullptr);
    if (state == HttpRequestReader::State::Hopeless) {
        m_socket->abort();
        return;
    }
    m_answer = m_answerer(*this);
    if (m_answer.manner == HttpAnswer::Manner::HangUp)
        m_socket->disconnectFromHost();
    else if (m_answer.manner == HttpAnswer::Manner::Answer)
        QTimer::singleShot(m_answer.delay, Qt::PreciseTimer, this, &HttpConversation::speak);
}

void HttpConversation::speak()
{
    m_speaking = true;
    m_socket->write(m_answer.head());
    drip();
}

void HttpConversation::drip()
{
    const bool drips = m_answer.dripTime.count() > 0;
    m_dripped += drips ? m_answer.sentSize() / kDrops + 1 : m_answer.sentSize();
    goOn();
    if (m_dripped < m_answer.sentSize())
        QTimer::singleShot(m_answer.dripTime / kDrops, Qt::PreciseTimer, this, &HttpConversation::drip);
}

void HttpConversation::release()
{
    m_answer.holdAfter = -1;
    goOn();
}

void HttpConversation::goOn()
{
    if (!m_speaking)
        return;
    const qint64 end = endForNow();
    while (m_position < end && m_socket->bytesToWrite() < kChunk)
        sendUpTo(end);
    if (m_position < m_answer.sentSize() || m_socket->bytesToWrite() > 0)
        return;
    m_speaking = false;
    Q_EMIT delivered();
    m_socket->disconnectFromHost();
}

qint64 HttpConversation::endForNow() const
{
    const qint64 held = m_answer.holdAfter < 0 ? m_answer.sentSize() : m_answer.holdAfter;
    return std::min({held, m_dripped, m_answer.sentSize()});
}

void HttpConversation::sendUpTo(qint64 end)
{
    const qint64 from = m_position % m_answer.body.size();
    const qint64 length = std::min({kChunk, end - m_position, m_answer.body.size() - from});
    m_socket->write(m_answer.body.constData() + from, length);
    m_position += length;
}

HttpServer::HttpServer(const HttpConversation::Answerer &answerer)
{
    connect(this, &QTcpServer::newConnection, this, [this, answerer] {
        while (QTcpSocket *socket = nextPendingConnection())
            new HttpConversation(socket, answerer);
    });
}

} // namespace rig
