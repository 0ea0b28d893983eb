// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderPort.h"

#include "rig/BootLoaderSession.h"
#include "rig/ToolWire.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMutexLocker>
#include <QRandomGenerator>

#include <algorithm>

namespace rig {

BootLoaderPort::BootLoaderPort(RigThread &thread, SimulatedDevice &device, FaultBoard &faults,
                               Journal &journal)
    : m_thread(thread)
    , m_device(device)
    , m_faults(faults)
    , m_journal(journal)
    , m_bootLoaders{{{device, faults, Chip::Pc}, {device, faults, Chip::Otg}}}
{
    m_thread.runAndWait([this] {
        m_server = new QLocalServer;
        // In the abstract namespace a killed process leaves no socket file behind.
        m_server->setSocketOptions(QLocalServer::AbstractNamespaceOption);
        connect(m_server, &QLocalServer::newConnection, m_server, [this] { acceptAll(); });
    });
}

BootLoaderPort::~BootLoaderPort()
{
    qunsetenv(wire::kSocketVariable);
    m_thread.runAndWait([this] { delete m_server; });
}

bool BootLoaderPort::start()
{
    const QString name = QStringLiteral("quillon-rig-%1-%2")
                             .arg(QCoreApplication::applicationPid())
                             .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
    bool listening = false;
    m_thread.runAndWait([&] { listening = m_server->listen(name); });
    if (listening)
        qputenv(wire::kSocketVariable, name.toUtf8());
    return listening;
}

void BootLoaderPort::acceptAll()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        auto *session = new BootLoaderSession(socket, *this, m_device, m_faults, m_journal);
        session->setParent(m_server);
        connect(session, &BootLoaderSession::greeted, m_server, [this, session] { begin(session->run()); });
        connect(session, &BootLoaderSession::ended, m_server, [this, session] { end(session->run()); });
    }
}

void BootLoaderPort::begin(const ToolRun &run)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_runs.append(run);
    }
    m_journal.record(QStringLiteral("boot loader"),
                     QStringLiteral("flashing tool started: ") + run.arguments.join(QLatin1Char(' ')));
    Q_EMIT toolStarted(run);
}

// A run that was forgotten meanwhile stays forgotten.
void BootLoaderPort::end(const ToolRun &run)
{
    {
        const QMutexLocker lock(&m_mutex);
        for (ToolRun &known : m_runs) {
            if (known.processId == run.processId)
                known = run;
        }
    }
    m_journal.record(QStringLiteral("boot loader"),
                     run.finished ? QStringLiteral("flashing tool ended, image complete")
                                  : QStringLiteral("flashing tool ended, image not complete"));
    Q_EMIT toolEnded(run);
}

QList<ToolRun> BootLoaderPort::runs() const
{
    const QMutexLocker lock(&m_mutex);
    return m_runs;
}

bool BootLoaderPort::isFlashing() const
{
    const QList<ToolRun> all = runs();
    return std::any_of(all.begin(), all.end(), [](const ToolRun &run) { return run.running; });
}

void BootLoaderPort::forgetRuns()
{
    const QMutexLocker lock(&m_mutex);
    m_runs.removeIf([](const ToolRun &run) { return !run.running; });
}

} // namespace rig
