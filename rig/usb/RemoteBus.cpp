// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/usb/RemoteBus.h"

#include <QByteArrayList>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <utility>

namespace rig::usb {

namespace {

constexpr char kPortVariable[] = "QUILLON_REMOTE_BUS";
constexpr int kPatienceMs = 5000;

} // namespace

RemoteBus::RemoteBus(Heard heard)
    : m_heard(std::move(heard))
{
}

RemoteBus::~RemoteBus()
{
    m_thread.runAndWait([this] { delete m_socket; });
}

bool RemoteBus::isOffered()
{
    return qEnvironmentVariableIsSet(kPortVariable);
}

bool RemoteBus::connectToIt(QString *error)
{
    m_thread.runAndWait([this, error] {
        m_socket = new QTcpSocket(m_thread.context());
        m_socket->setProxy(QNetworkProxy::NoProxy);
        QObject::connect(m_socket, &QTcpSocket::readyRead, m_socket, [this] { takeLines(); });
        m_socket->connectToHost(QHostAddress::LocalHost,
                                quint16(qEnvironmentVariableIntValue(kPortVariable)));
        if (!m_socket->waitForConnected(kPatienceMs))
            *error = m_socket->errorString();
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    });
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

void RemoteBus::plug(int device, int vendorId, int productId, int reportId)
{
    say("plug", device,
        QByteArrayList{QByteArray::number(vendorId), QByteArray::number(productId),
                       QByteArray::number(reportId)}
            .join(' '));
}

void RemoteBus::unplug(int device)
{
    say("unplug", device);
}

void RemoteBus::send(int device, const QByteArray &report)
{
    say("send", device, report.toHex());
}

void RemoteBus::say(const QByteArray &verb, int device, const QByteArray &rest)
{
    const QByteArray line = verb + ' ' + QByteArray::number(device) + ' ' + rest + '\n';
    m_thread.runAndWait([this, line] {
        m_socket->write(line);
        m_socket->flush();
    });
}

void RemoteBus::takeLines()
{
    while (m_socket->canReadLine()) {
        const QByteArrayList words = m_socket->readLine().simplified().split(' ');
        if (words.value(0) == "heard")
            m_heard(words.value(1).toInt(), QByteArray::fromHex(words.value(2)));
    }
}

} // namespace rig::usb
