#include "rig/BootLoaderPort.h"

#include "rig/BootLoaderSession.h"
#include "rig/ToolWire.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMutex>
#include <QMutexLocker>
#include <QRandomGenerator>

#include <algorithm>

namespace rig {

struct BootLoaderPort::Log {
    mutable QMutex mutex;
    QList<ToolRun> runs;

    void add(const ToolRun &run)
    {
        const QMutexLocker lock(&mutex);
        runs.append(run);
    }

    // A run that was forgotten meanwhile stays forgotten.
    void update(const ToolRun &run)
    {
        const QMutexLocker lock(&mutex);
        const auto known = std::find_if(runs.begin(), runs.end(), [&run](const ToolRun &other) {
            return other.processId == run.processId;
        });
        if (known != runs.end())
            *known = run;
    }
};

// The port's side on the rig's thread.
class BootLoaderPort::Listener : public QObject {
public:
    Listener(BootLoaderPort &port, SimulatedDevice &device, FaultBoard &faults, Journal &journal)
        : m_port(port)
        , m_device(device)
        , m_faults(faults)
        , m_journal(journal)
    {
        // In the abstract namespace a killed process leaves no socket file behind.
        m_server.setSocketOptions(QLocalServer::AbstractNamespaceOption);
        connect(&m_server, &QLocalServer::newConnection, this, &Listener::acceptAll);
    }

    bool listen()
    {
        const QString name = QStringLiteral("quillon-rig-%1-%2")
                                 .arg(QCoreApplication::applicationPid())
                                 .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
        return m_server.listen(name);
    }

    QString name() const { return m_server.serverName(); }

private:
    void acceptAll()
    {
        while (QLocalSocket *socket = m_server.nextPendingConnection()) {
            auto *session = new BootLoaderSession(socket, m_port, m_device, m_faults, m_journal);
            session->setParent(this);
            connect(session, &BootLoaderSession::greeted, this, [this, session] { begin(*session); });
            connect(session, &BootLoaderSession::ended, this, [this, session] { end(session->run()); });
        }
    }

    void begin(const BootLoaderSession &session)
    {
        ToolRun run = session.run();
        m_port.m_log->add(run);
        m_journal.record(QStringLiteral("boot loader"),
                         QStringLiteral("flashing tool started: ") + run.arguments.join(QLatin1Char(' ')));
        Q_EMIT m_port.toolStarted(run);
    }

    void end(const ToolRun &run)
    {
        m_port.m_log->update(run);
        m_journal.record(QStringLiteral("boot loader"),
                         run.finished ? QStringLiteral("flashing tool ended, image complete")
                                      : QStringLiteral("flashing tool ended, image not complete"));
        Q_EMIT m_port.toolEnded(run);
    }

    BootLoaderPort &m_port;
    SimulatedDevice &m_device;
    FaultBoard &m_faults;
    Journal &m_journal;
    QLocalServer m_server;
};

BootLoaderPort::BootLoaderPort(RigThread &thread, SimulatedDevice &device, FaultBoard &faults,
                               Journal &journal)
    : m_log(std::make_shared<Log>())
    , m_thread(thread)
    , m_bootLoaders{{{device, faults, Chip::Pc}, {device, faults, Chip::Otg}}}
{
    m_thread.runAndWait([&] { m_listener = new Listener(*this, device, faults, journal); });
}

BootLoaderPort::~BootLoaderPort()
{
    qunsetenv(wire::kSocketVariable);
    m_thread.runAndWait([this] { delete m_listener; });
}

bool BootLoaderPort::start()
{
    bool listening = false;
    QString name;
    m_thread.runAndWait([&] {
        listening = m_listener->listen();
        name = m_listener->name();
    });
    if (listening)
        qputenv(wire::kSocketVariable, name.toUtf8());
    return listening;
}

QList<ToolRun> BootLoaderPort::runs() const
{
    const QMutexLocker lock(&m_log->mutex);
    return m_log->runs;
}

bool BootLoaderPort::isFlashing() const
{
    const QList<ToolRun> all = runs();
    return std::any_of(all.begin(), all.end(), [](const ToolRun &run) { return run.running; });
}

void BootLoaderPort::forgetRuns()
{
    const QMutexLocker lock(&m_log->mutex);
    const auto over = [](const ToolRun &run) { return !run.running; };
    m_log->runs.erase(std::remove_if(m_log->runs.begin(), m_log->runs.end(), over), m_log->runs.end());
}

} // namespace rig
