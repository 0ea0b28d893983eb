// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/trace/ReplayTransport.h"

#include "probe/trace/ReplayScript.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QQueue>
#include <QWaitCondition>

#include <algorithm>
#include <optional>
#include <utility>

namespace probe {

namespace {

using namespace std::chrono_literals;
using HIDCommunicator::HidConnection;
using HIDCommunicator::HidDeviceInfo;
using HIDCommunicator::HidTransport;
using std::chrono::milliseconds;
using Kind = TraceEvent::Kind;

/// How long a device stays longer than it did, when it was not asked everything yet.
constexpr milliseconds kPatience = 10s;
/// How long it stays at least after its last answer, so that the answer is heard.
constexpr milliseconds kFarewell = 300ms;

milliseconds remaining(const QDeadlineTimer &deadline)
{
    return deadline.isForever() ? milliseconds::max() : milliseconds(deadline.remainingTime());
}

QString pathOf(const ReplayDevice &device)
{
    return QStringLiteral(R"(\\?\hid#vid_%1&pid_%2#replay%3#{4d1e55b2-f16f-11cf-88cb-001111000030})")
        .arg(device.vendorId, 4, 16, QLatin1Char('0'))
        .arg(device.productId, 4, 16, QLatin1Char('0'))
        .arg(device.number);
}

/// A device of the trace and how far it has been played.
struct Player {
    ReplayDevice device;
    QString path;
    bool attached = false;
    qsizetype attempts = 0; ///< to open it
    qsizetype asked = 0; ///< exchanges that are behind us
    milliseconds answered{0}; ///< when its last answer comes, on the clock of the play

    Kind nextOpening() const
    {
        const QList<Kind> &openings = device.openings;
        return openings.isEmpty() ? Kind::Open : openings.at(std::min(attempts, openings.size() - 1));
    }
    bool hasMoreToSay() const { return asked < device.exchanges.size(); }
};

/// A plug or an unplug.
struct Turn {
    milliseconds time;
    qsizetype player;
    bool attaches;
};

struct DueReport {
    milliseconds due;
    QByteArray report;
};

/// What the bus and its connections share. QWaitCondition, because others lose count when the clock is sped
/// up. Functions named ...Locked are called with the mutex held.
class Stage {
public:
    Stage(const Trace &trace, Pace pace)
        : m_pace(pace)
    {
        for (const ReplayDevice &device : devicesOf(trace)) {
            m_turns.append({device.plugged, m_players.size(), true});
            if (device.unplugged)
                m_turns.append({*device.unplugged, m_players.size(), false});
            m_players.append({device, pathOf(device)});
        }
        std::stable_sort(m_turns.begin(), m_turns.end(),
                         [](const Turn &left, const Turn &right) { return left.time < right.time; });
        if (!m_turns.isEmpty())
            m_traceTime = m_turns.first().time;
    }

    /// The time since somebody first looked.
    milliseconds nowLocked()
    {
        if (!m_clock.isValid())
            m_clock.start();
        return milliseconds(m_clock.elapsed());
    }

    /// Plays what is due.
    void advanceLocked()
    {
        const milliseconds now = nowLocked();
        while (m_played < m_turns.size() && dueLocked() <= now) {
            const Turn &turn = m_turns.at(m_played++);
            m_players[turn.player].attached = turn.attaches;
            reachLocked(turn.time, now);
            ++m_hotplugs;
            m_news.wakeAll();
        }
    }

    /// How long until the next plug or unplug.
    milliseconds untilTurnLocked()
    {
        return m_played < m_turns.size() ? std::max(0ms, dueLocked() - nowLocked()) : milliseconds::max();
    }

    QList<HidDeviceInfo> attachedLocked(int vendorId) const
    {
        QList<HidDeviceInfo> found;
        for (const Player &player : m_players) {
            if (player.attached && player.device.vendorId == vendorId)
                found.append({player.path, player.device.vendorId, player.device.productId});
        }
        return found;
    }

    Player *attachedAtLocked(const QString &path)
    {
        for (Player &player : m_players) {
            if (player.attached && player.path == path)
                return &player;
        }
        return nullptr;
    }

    /// The answers to \a request: the next exchange that asks the same, else the last one that did.
    QList<ReplayAnswer> answerLocked(Player &player, const QByteArray &request)
    {
        const QList<ReplayAnswer> answers = findAnswersLocked(player, request);
        for (const ReplayAnswer &answer : answers)
            player.answered = std::max(player.answered, nowLocked() + answer.delay);
        return answers;
    }

    QMutex m_mutex;
    QWaitCondition m_news;
    int m_hotplugs = 0;
    bool m_interrupted = false;

private:
    milliseconds dueLocked() const
    {
        const Turn &turn = m_turns.at(m_played);
        const Player &player = m_players.at(turn.player);
        const milliseconds due = m_reached + (turn.time - m_traceTime);
        if (turn.attaches || m_pace == Pace::AsRecorded)
            return due;
        return player.hasMoreToSay() ? due + kPatience : std::max(due, player.answered + kFarewell);
    }

    QList<ReplayAnswer> findAnswersLocked(Player &player, const QByteArray &request)
    {
        const QList<ReplayExchange> &exchanges = player.device.exchanges;
        const auto asksTheSame
            = [&](const ReplayExchange &exchange) { return sameReport(exchange.request, request); };
        const auto ahead = std::find_if(exchanges.begin() + player.asked, exchanges.end(), asksTheSame);
        if (ahead != exchanges.end()) {
            player.asked = ahead - exchanges.begin() + 1;
            reachLocked(ahead->time, nowLocked());
            return ahead->answers;
        }
        const auto behind = std::find_if(exchanges.rbegin(), exchanges.rend(), asksTheSame);
        return behind == exchanges.rend() ? QList<ReplayAnswer>() : behind->answers;
    }

    /// From here on, times count from \a traceTime.
    void reachLocked(milliseconds traceTime, milliseconds now)
    {
        if (traceTime < m_traceTime)
            return;
        m_traceTime = traceTime;
        m_reached = now;
    }

    Pace m_pace;
    QList<Player> m_players;
    QList<Turn> m_turns;
    qsizetype m_played = 0;
    QElapsedTimer m_clock;
    milliseconds m_traceTime{0}; // how far the trace was played
    milliseconds m_reached{0}; // and when that was
};

class ReplayConnection : public HidConnection {
public:
    /// The caller holds the lock.
    ReplayConnection(std::shared_ptr<Stage> stage, const Player &player)
        : m_stage(std::move(stage))
        , m_path(player.path)
    {
        queueLocked(player.device.greetings);
    }

    ReadResult read(QByteArray &report, milliseconds timeout) override
    {
        const QDeadlineTimer deadline(timeout);
        const QMutexLocker lock(&m_stage->m_mutex);
        for (;;) {
            m_stage->advanceLocked();
            if (!m_stage->attachedAtLocked(m_path))
                return ReadResult::Gone;
            const milliseconds now = m_stage->nowLocked();
            if (!m_reports.isEmpty() && m_reports.head().due <= now) {
                report = m_reports.dequeue().report;
                return ReadResult::Report;
            }
            if (std::exchange(m_interrupted, false) || deadline.hasExpired())
                return ReadResult::Timeout;
            milliseconds wait = std::min(remaining(deadline), m_stage->untilTurnLocked());
            if (!m_reports.isEmpty())
                wait = std::min(wait, m_reports.head().due - now);
            m_stage->m_news.wait(&m_stage->m_mutex, QDeadlineTimer(wait));
        }
    }

    void interruptRead() override
    {
        const QMutexLocker lock(&m_stage->m_mutex);
        m_interrupted = true;
        m_stage->m_news.wakeAll();
    }

    bool write(const QByteArray &report) override
    {
        const QMutexLocker lock(&m_stage->m_mutex);
        m_stage->advanceLocked();
        Player *const player = m_stage->attachedAtLocked(m_path);
        if (!player)
            return false;
        queueLocked(m_stage->answerLocked(*player, report));
        m_stage->m_news.wakeAll();
        return true;
    }

private:
    void queueLocked(const QList<ReplayAnswer> &answers)
    {
        const milliseconds now = m_stage->nowLocked();
        for (const ReplayAnswer &answer : answers)
            m_reports.enqueue({now + answer.delay, answer.report});
        std::stable_sort(m_reports.begin(), m_reports.end(),
                         [](const DueReport &left, const DueReport &right) { return left.due < right.due; });
    }

    std::shared_ptr<Stage> m_stage;
    QString m_path;
    QQueue<DueReport> m_reports;
    bool m_interrupted = false;
};

class ReplayTransport : public HidTransport {
public:
    explicit ReplayTransport(std::shared_ptr<Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    std::optional<QList<HidDeviceInfo>> enumerate(int vendorId) override
    {
        const QMutexLocker lock(&m_stage->m_mutex);
        m_stage->advanceLocked();
        return m_stage->attachedLocked(vendorId);
    }

    std::unique_ptr<HidConnection> open(const QString &path) override
    {
        const QMutexLocker lock(&m_stage->m_mutex);
        m_stage->advanceLocked();
        Player *const player = m_stage->attachedAtLocked(path);
        if (!player)
            return nullptr;
        const Kind outcome = player->nextOpening();
        ++player->attempts;
        return outcome == Kind::Open ? std::make_unique<ReplayConnection>(m_stage, *player) : nullptr;
    }

    bool waitForHotplug(milliseconds timeout) override
    {
        const QDeadlineTimer deadline(timeout);
        const QMutexLocker lock(&m_stage->m_mutex);
        for (m_stage->advanceLocked(); m_seen == m_stage->m_hotplugs && !m_stage->m_interrupted;
             m_stage->advanceLocked()) {
            if (deadline.hasExpired())
                break;
            const milliseconds wait = std::min(remaining(deadline), m_stage->untilTurnLocked());
            m_stage->m_news.wait(&m_stage->m_mutex, QDeadlineTimer(wait));
        }
        // An interruption hides no plug: the next wait tells of it.
        if (std::exchange(m_stage->m_interrupted, false))
            return false;
        return std::exchange(m_seen, m_stage->m_hotplugs) != m_stage->m_hotplugs;
    }

    void interruptHotplugWait() override
    {
        const QMutexLocker lock(&m_stage->m_mutex);
        m_stage->m_interrupted = true;
        m_stage->m_news.wakeAll();
    }

private:
    std::shared_ptr<Stage> m_stage;
    int m_seen = 0; // plugs and unplugs that waitForHotplug() has told of
};

} // namespace

Bus replay(const Trace &trace, Pace pace)
{
    const auto stage = std::make_shared<Stage>(trace, pace);
    const auto isDenied = [stage](const QString &path) {
        const QMutexLocker lock(&stage->m_mutex);
        stage->advanceLocked();
        const Player *const player = stage->attachedAtLocked(path);
        return player && player->nextOpening() == Kind::Denied;
    };
    return {std::make_unique<ReplayTransport>(stage), isDenied};
}

} // namespace probe
