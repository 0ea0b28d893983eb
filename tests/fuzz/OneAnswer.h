// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

#include <utility>

/// A server on the loopback that gives one answer, byte for byte, and hangs up; whoever asks again, because
/// the answer led elsewhere, gets an empty page. It is the proxy of its clients, so wherever an answer leads
/// to, it leads here.
class OneAnswer : public QTcpServer {
    Q_OBJECT

public:
    OneAnswer()
    {
        setProxy(QNetworkProxy::NoProxy);
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection())
                serve(socket);
        });
    }

    void setAnswer(const QByteArray &answer) { m_answer = answer; }
    QNetworkProxy proxy() const
    {
        return QNetworkProxy(QNetworkProxy::HttpProxy, serverAddress().toString(), serverPort());
    }

private:
    void serve(QTcpSocket *socket)
    {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            if (!socket->peek(socket->bytesAvailable()).contains("\r\n\r\n"))
                return;
            socket->readAll();
            static const QByteArray empty = QByteArrayLiteral("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
            socket->write(std::exchange(m_answer, empty));
            socket->disconnectFromHost();
        });
    }

    QByteArray m_answer;
};
