// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoaderPort.h"
#include "rig/BootLoaderResponder.h"

#include <QLocalSocket>
#include <QObject>

#include <optional>

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

    // False: the message makes no sense.
    bool hello(const QStringList &words);
    bool find(const QStringList &words);
    bool report(const QStringList &words);

    void reply(const QStringList &words);
    BootLoader &chip(); // that the tool was started for

    QLocalSocket *m_socket;
    BootLoaderPort &m_port;
    const SimulatedDevice &m_device;
    FaultBoard &m_faults;
    const Journal &m_journal;
    ToolRun m_run;
    std::optional<BootLoaderResponder> m_responder; // the chip's; none before the greeting
    int m_restartsBefore = 0; // the chip's, when the tool reported
};

} // namespace rig
