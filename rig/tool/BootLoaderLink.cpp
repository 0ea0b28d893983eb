#include "rig/tool/BootLoaderLink.h"

#include "rig/ToolWire.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace tool {

namespace wire = rig::wire;

namespace {

constexpr std::chrono::milliseconds kPatience{5000};

QString word(const char *name)
{
    return QString::fromLatin1(name);
}

} // namespace

bool BootLoaderLink::connectToRig()
{
    m_socket.setServerName(qEnvironmentVariable(wire::kSocketVariable));
    m_socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    if (m_socket.serverName().isEmpty())
        return false;
    m_socket.connectToServer();
    return m_socket.waitForConnected(kPatience.count());
}

QStringList BootLoaderLink::ask(const QStringList &words, const QByteArray &block)
{
    m_socket.write(wire::encode(words) + block);
    const QDeadlineTimer deadline(kPatience);
    while (!m_socket.canReadLine()) {
        if (!m_socket.waitForReadyRead(int(deadline.remainingTime())))
            return {};
    }
    return wire::decode(m_socket.readLine());
}

bool BootLoaderLink::agree(const QStringList &words, const QByteArray &block)
{
    return ask(words, block).value(0) == word(wire::kYes);
}

QStringList BootLoaderLink::greet(const QStringList &arguments)
{
    const QString processId = QString::number(QCoreApplication::applicationPid());
    return ask(QStringList{word(wire::kHello), processId} + arguments).mid(1);
}

bool BootLoaderLink::find(int productId)
{
    return agree({word(wire::kFind), QString::number(productId, 16)});
}

bool BootLoaderLink::attach(int productId, bool alreadyInBootLoader)
{
    return agree(
        {word(wire::kAttach), QString::number(productId, 16), QString::number(int(alreadyInBootLoader))});
}

bool BootLoaderLink::isReady()
{
    return agree({word(wire::kReady)});
}

bool BootLoaderLink::erase(qsizetype imageSize)
{
    return agree({word(wire::kErase), QString::number(imageSize)});
}

bool BootLoaderLink::write(qsizetype offset, const QByteArray &block)
{
    return agree({word(wire::kWrite), QString::number(offset), QString::number(block.size())}, block);
}

QByteArray BootLoaderLink::digest()
{
    return ask({word(wire::kDigest)}).value(1).toLatin1();
}

bool BootLoaderLink::restart()
{
    return agree({word(wire::kRestart)});
}

void BootLoaderLink::waitForEnd()
{
    while (m_socket.state() == QLocalSocket::ConnectedState)
        m_socket.waitForReadyRead(-1);
}

} // namespace tool
