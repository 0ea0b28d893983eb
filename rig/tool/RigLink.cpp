// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/RigLink.h"

#include "rig/ToolWire.h"

#include <QCoreApplication>

namespace tool {

namespace wire = rig::wire;

namespace {

constexpr std::chrono::milliseconds kPatience{5000};

QString word(const char *name)
{
    return QString::fromLatin1(name);
}

} // namespace

bool RigLink::connectToRig()
{
    m_socket.setServerName(qEnvironmentVariable(wire::kSocketVariable));
    m_socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    if (m_socket.serverName().isEmpty())
        return false;
    m_socket.connectToServer();
    return m_socket.waitForConnected(kPatience.count());
}

QStringList RigLink::readWords(const QDeadlineTimer &deadline)
{
    while (!m_socket.canReadLine()) {
        if (!m_socket.waitForReadyRead(int(deadline.remainingTime())))
            return {};
    }
    return wire::decode(m_socket.readLine());
}

QStringList RigLink::ask(const QStringList &words)
{
    m_socket.write(wire::encode(words));
    return readWords(QDeadlineTimer(kPatience));
}

QStringList RigLink::greet(const QStringList &arguments)
{
    const QString processId = QString::number(QCoreApplication::applicationPid());
    return ask(QStringList{word(wire::kHello), processId} + arguments).mid(1);
}

bool RigLink::find(int productId)
{
    return ask({word(wire::kFind), QString::number(productId, 16)}).value(0) == word(wire::kYes);
}

bool RigLink::send(const QByteArray &report)
{
    return m_socket.write(wire::encode({word(wire::kReport), QString::fromLatin1(report.toHex())})) > 0;
}

QByteArray RigLink::receive(const QDeadlineTimer &deadline)
{
    return QByteArray::fromHex(readWords(deadline).value(1).toLatin1());
}

void RigLink::waitForEnd()
{
    while (m_socket.state() == QLocalSocket::ConnectedState)
        m_socket.waitForReadyRead(-1);
}

} // namespace tool
