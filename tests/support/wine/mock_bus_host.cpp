// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Runs a command on a bus of mock devices, which the command plugs in itself: Windows' programs under Wine
// cannot be a device to Wine's own bus driver. To be started by umockdev-wrapper, whose variables reach the
// driver with the command's. The command finds the port of this program in QUILLON_REMOTE_BUS; what is said
// there stands in rig/usb/RemoteBus.h.
#include "tests/support/MockBus.h"

#include <QCoreApplication>
#include <QHash>
#include <QList>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>

#include <cstdio>
#include <memory>
#include <utility>

namespace {

/// One program that plugs devices in. They leave with it.
class Client : public QObject {
public:
    Client(MockBus &bus, QTcpSocket *socket)
        : QObject(socket)
        , m_bus(bus)
        , m_socket(socket)
    {
        connect(socket, &QTcpSocket::readyRead, this, &Client::takeLines);
        connect(socket, &QTcpSocket::disconnected, this, [this] {
            for (const auto &device : std::exchange(m_devices, {}))
                unplug(device);
        });
    }

private:
    void takeLines()
    {
        while (m_socket->canReadLine())
            takeWords(m_socket->readLine().simplified().split(' '));
    }

    void takeWords(const QByteArrayList &words)
    {
        const QByteArray verb = words.value(0);
        const int device = words.value(1).toInt();
        if (verb == "plug")
            plug(device, {words.value(2).toInt(), words.value(3).toInt(), words.value(4).toInt()});
        else if (!m_devices.contains(device))
            return;
        else if (verb == "unplug")
            unplug(m_devices.take(device));
        else if (verb == "send")
            m_devices[device]->send(QByteArray::fromHex(words.value(2)));
    }

    void plug(int device, const MockIdentity &identity)
    {
        m_devices[device] = m_bus.plug(identity, [this, device](MockDevice &unseen) {
            unseen.setResponder([this, device](const QByteArray &report) {
                // On the device's thread.
                QMetaObject::invokeMethod(this, [this, device, report] { tell(device, report); });
                return QList<QByteArray>();
            });
        });
    }

    /// It stays until the end: umockdev aborts a program that asks one that is gone, and a driver may do so
    /// long after.
    void unplug(const std::shared_ptr<MockDevice> &device)
    {
        device->setResponder({});
        device->unplug();
        m_unplugged.append(device);
    }

    void tell(int device, const QByteArray &report)
    {
        m_socket->write("heard " + QByteArray::number(device) + ' ' + report.toHex() + '\n');
    }

    MockBus &m_bus;
    QTcpSocket *m_socket;
    QHash<int, std::shared_ptr<MockDevice>> m_devices;
    QList<std::shared_ptr<MockDevice>> m_unplugged;
};

int fail(const QString &reason)
{
    std::fprintf(stderr, "mock bus: %s\n", qPrintable(reason));
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList command = application.arguments().sliced(1);
    if (command.isEmpty())
        return fail(QStringLiteral("which command?"));
    if (const QString obstacle = MockBus::obstacle(); !obstacle.isEmpty())
        return fail(obstacle);
    MockBus bus;
    if (!bus.isShown())
        return fail(QStringLiteral("to be started by umockdev-wrapper"));

    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost))
        return fail(server.errorString());
    QObject::connect(&server, &QTcpServer::newConnection, &server,
                     [&] { new Client(bus, server.nextPendingConnection()); });
    qputenv("QUILLON_REMOTE_BUS", QByteArray::number(server.serverPort()));

    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setInputChannelMode(QProcess::ForwardedInputChannel);
    QObject::connect(&process, &QProcess::finished, &application,
                     [](int status) { QCoreApplication::exit(status); });
    process.start(command.takeFirst(), command);
    if (!process.waitForStarted())
        return fail(process.errorString());
    return QCoreApplication::exec();
}
