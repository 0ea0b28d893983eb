// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Drives the panel over the customer's own HID library: the device is announced, opened, asked, and the panel
// tells which version it found.
#include <HIDCommunicator/OrvikHIDManager.h>
#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <QApplication>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace QuillonFirmwareUpgrade;

namespace {

constexpr int kPatience = 20000;

// Every version that is asked for is 1.1.5.
void answerQueries(QTcpServer &server)
{
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&server] {
        QTcpSocket *socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
            if (!socket->readAll().contains("\r\n\r\n"))
                return;
            const QByteArray body = R"([{"f_ver":"1.1.5","f_remark":"-","f_remark_en":"-"}])";
            socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: "
                          + QByteArray::number(body.size()) + "\r\n\r\n" + body);
            socket->disconnectFromHost();
        });
    });
}

bool report(const char *what, bool isTrue)
{
    std::printf("%s: %s\n", what, isTrue ? "yes" : "NO");
    return isTrue;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost))
        return 1;
    answerQueries(server);
    QNetworkProxy::setApplicationProxy(
        {QNetworkProxy::HttpProxy, server.serverAddress().toString(), server.serverPort()});

    QString version;
    bool isNeeded = false;
    auto *panel = new FirmwareUpgradeWidget;
    panel->setDeviceModel(DeviceModel::R2);
    QObject::connect(panel, &FirmwareUpgradeWidget::upgradeDisplayMsg, &application,
                     [&](const QString &shown, bool needed) {
                         version = shown;
                         isNeeded = needed;
                         if (shown == QLatin1String("1.1.5"))
                             application.quit();
                     });
    panel->show();
    QTimer::singleShot(kPatience, &application, &QApplication::quit);
    application.exec();
    delete panel;

    const QStringList calls = HIDCommunicator::OrvikHIDManager::instance()->calls();
    const bool all[]{
        report("the library was acquired", calls.value(0) == QLatin1String("acquire")),
        report("the device was opened", calls.contains(QLatin1String("openHIDHandle"))),
        report("its mode was asked", calls.contains(QLatin1String("040810"))),
        report("its PC version was read", calls.contains(QLatin1String("060b00"))),
        report("its OTG version was read", calls.contains(QLatin1String("061000"))),
        report("the panel told the newest version", version == QLatin1String("1.1.5")),
        report("the panel told that an upgrade is needed", isNeeded),
        report("the library was released", calls.last() == QLatin1String("release")),
    };
    return std::all_of(std::begin(all), std::end(all), [](bool isTrue) { return isTrue; }) ? 0 : 1;
}
