#pragma once

#include <QByteArray>
#include <QLocalSocket>
#include <QStringList>

namespace tool {

/// The tool's connection to the boot loaders. Every call waits for its answer, a few seconds at most; after a
/// failed one the connection is of no further use.
class BootLoaderLink {
public:
    bool connectToRig();

    QStringList greet(const QStringList &arguments); ///< the names of this run's faults
    bool find(int productId);
    bool attach(int productId, bool alreadyInBootLoader);
    bool isReady();
    bool erase(qsizetype imageSize);
    bool write(qsizetype offset, const QByteArray &block);
    QByteArray digest(); ///< SHA-256 of what the flash holds, hexadecimal
    bool restart();

    void waitForEnd(); ///< returns when the other side has gone

private:
    QStringList ask(const QStringList &words, const QByteArray &block = {});
    bool agree(const QStringList &words, const QByteArray &block = {});

    QLocalSocket m_socket;
};

} // namespace tool
