#pragma once

#include "rig/BootLoaderPort.h"

#include <QLocalSocket>
#include <QObject>

namespace rig {

/// One connection of a flashing tool, from its greeting to its end. Lives on the rig's thread.
class BootLoaderSession : public QObject {
    Q_OBJECT

public:
    /// Takes \a socket over.
    BootLoaderSession(QLocalSocket *socket, BootLoaderPort &port, const SimulatedDevice &device,
                      FaultBoard &faults, const Journal &journal);

    const ToolRun &run() const { return m_run; }

Q_SIGNALS:
    void greeted(); ///< the tool has said who it is
    void ended(); ///< the connection is gone; nothing follows

private:
    struct Message;
    static const QList<Message> &messages();

    void receive();
    bool handleLine(const QByteArray &line);
    void close();

    void hello(const QStringList &words);
    void find(const QStringList &words);
    void attach(const QStringList &words);
    void ready(const QStringList &words);
    void erase(const QStringList &words);
    void beginBlock(const QStringList &words);
    void endBlock(const QByteArray &block);
    void digest(const QStringList &words);
    void restart(const QStringList &words);

    void reply(bool yes);
    void reply(const QStringList &words);
    bool isOnBus(int productId) const;
    BootLoader &chip(); // that the tool was started for

    QLocalSocket *m_socket;
    BootLoaderPort &m_port;
    const SimulatedDevice &m_device;
    FaultBoard &m_faults;
    const Journal &m_journal;
    ToolRun m_run;
    bool m_greeted = false;
    int m_restartsBefore = 0; // the chip's, when the tool reported
    int m_blockOffset = 0;
    int m_blockSize = 0; // above 0: bytes of a block are awaited in place of a line
};

} // namespace rig
