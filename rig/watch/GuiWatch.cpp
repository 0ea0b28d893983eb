// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/watch/GuiWatch.h"

#include "rig/watch/StallRule.h"
#include "rig/watch/ThreadProbe.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QHash>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <utility>

namespace rig {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using namespace std::chrono_literals;

namespace {

constexpr nanoseconds kTick = 10ms;
/// What counts of a pause in which the watch did not run either.
constexpr nanoseconds kLongestTick = 5 * kTick;
/// Many looks fit into the limit, so that one that meets the wrong moment does not decide.
constexpr nanoseconds kLookInterval = kTurnLimit / 6;

/// Lives on the GUI thread, counts the turns of its loop, and notes how things stood at the last one.
class TurnCounter : public QObject {
public:
    explicit TurnCounter(const ThreadProbe &probe)
        : m_probe(probe)
    {
    }

    int turns() const { return m_turns; }
    nanoseconds lastTurn() const { return m_lastTurn; }
    ThreadProbe::Share shareAtLastTurn() const { return m_share; }

    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::User) {
            m_lastTurn = RealTime::now();
            m_share = m_probe.share();
            ++m_turns;
        }
        return QObject::event(event);
    }

private:
    const ThreadProbe &m_probe;
    std::atomic<int> m_turns{0};
    // Written before the count, and not again before the watch has seen it and posted the next event.
    nanoseconds m_lastTurn{0};
    ThreadProbe::Share m_share;
};

const StatedWait *statedWaitAt(void *address)
{
    const QString function = exportedFunctionAt(address);
    const QList<StatedWait> &waits = statedWaits();
    const auto found = std::find_if(waits.begin(), waits.end(), [&function](const StatedWait &wait) {
        return function.startsWith(QLatin1StringView(wait.function));
    });
    return found == waits.end() ? nullptr : &*found;
}

nanoseconds turnLimit()
{
    nanoseconds granted{0};
    for (const StatedWait &wait : statedWaits()) {
        if (!ThreadProbe::seesStacks())
            granted = std::max<nanoseconds>(granted, wait.limit);
    }
    return kTurnLimit + granted;
}

} // namespace

class GuiWatch::Watcher : public QThread {
public:
    explicit Watcher(GuiWatch &watch)
        : m_watch(watch)
    {
        setObjectName(QStringLiteral("gui watch"));
    }

    ~Watcher() override { end(); }

    void end()
    {
        m_ending = true;
        wait();
    }

    bool isWatching() const { return m_isWatching; }

    std::optional<Freeze> worst() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_worst;
    }

protected:
    void run() override;

private:
    void postBeat();
    void beginStretch();
    void beginLook(const ThreadProbe::Share &share);
    void tick();
    void take(const ThreadProbe::Look &look);
    void pass(nanoseconds now, bool isHeldUp = false);
    bool isHeldUp(nanoseconds time);
    void charge(const ThreadProbe::Share &share);
    void judge();
    const StatedWait *statedWaitIn(const QList<void *> &stack);
    void describeStack();

    GuiWatch &m_watch;
    ThreadProbe m_probe;
    TurnCounter m_counter{m_probe};
    std::atomic<bool> m_ending{false};
    std::atomic<bool> m_isWatching{false};
    mutable QMutex m_mutex;
    std::optional<Freeze> m_worst;

    // The rest is the watch's own thread's.
    QHash<void *, const StatedWait *> m_waitsAt;
    Stretch m_stretch;
    int m_turnsBefore = 0;
    Freeze m_freeze; // what is wrong with it, as soon as it is too long
    bool m_isLost = false;
    // The last look at the GUI thread, and what has passed since.
    bool m_isAsked = false;
    const StatedWait *m_wait = nullptr;
    QList<void *> m_frozenStack; // of the last look that met no stated wait
    nanoseconds m_passedTo{0};
    nanoseconds m_sinceLook{0};
    ThreadProbe::Share m_share;
    nanoseconds m_othersRan{0};
    QElapsedTimer m_shownSinceLook;
};

void GuiWatch::Watcher::run()
{
    postBeat();
    while (!m_ending && m_counter.turns() == m_turnsBefore)
        RealTime::sleep(kTick);
    beginStretch();
    while (!m_ending) {
        RealTime::sleep(kTick);
        tick();
    }
    charge(m_probe.share());
}

void GuiWatch::Watcher::postBeat()
{
    QCoreApplication::postEvent(&m_counter, new QEvent(QEvent::User), Qt::HighEventPriority);
}

void GuiWatch::Watcher::beginStretch()
{
    m_turnsBefore = m_counter.turns();
    m_stretch = {};
    m_freeze = {};
    m_isLost = false;
    m_wait = nullptr;
    m_frozenStack.clear();
    m_passedTo = RealTime::now();
    beginLook(m_probe.share());
    postBeat();
    m_isWatching = true;
}

void GuiWatch::Watcher::beginLook(const ThreadProbe::Share &share)
{
    m_sinceLook = 0ns;
    m_share = share;
    m_shownSinceLook.start();
}

void GuiWatch::Watcher::tick()
{
    // Whatever is not yet the case below comes after this.
    const nanoseconds now = RealTime::now();
    const auto look = m_isAsked ? m_probe.takeAnswer() : std::nullopt;
    if (look)
        take(*look);
    if (m_counter.turns() != m_turnsBefore) {
        pass(m_counter.lastTurn());
        charge(m_counter.shareAtLastTurn());
        beginStretch();
        return;
    }
    pass(now, isHeldUp(now - m_passedTo));
    if (!m_isAsked && m_sinceLook >= kLookInterval) {
        m_isAsked = true;
        m_probe.ask();
    }
}

/// Whether the machine keeps the GUI thread waiting: for a disk, or for another thread of this process that
/// is ready to run but had less than half of the last \a time.
bool GuiWatch::Watcher::isHeldUp(nanoseconds time)
{
    const ThreadProbe::State state = m_probe.state();
    const ThreadProbe::Others others = m_probe.others();
    const nanoseconds ran = others.onProcessor - std::exchange(m_othersRan, others.onProcessor);
    return state == ThreadProbe::State::Unreachable
        || (state == ThreadProbe::State::Asleep && others.areReady && ran < time / 2);
}

void GuiWatch::Watcher::take(const ThreadProbe::Look &look)
{
    m_isAsked = false;
    m_wait = statedWaitIn(look.stack);
    if (!m_wait)
        m_frozenStack = look.stack;
    pass(look.at);
    charge(look.share);
}

void GuiWatch::Watcher::pass(nanoseconds now, bool isHeldUp)
{
    if (!isHeldUp)
        m_sinceLook += std::clamp(now - m_passedTo, 0ns, kLongestTick);
    m_passedTo = std::max(m_passedTo, now);
}

/// Counts what has passed since the last look. \a share is as of a moment at which the GUI thread ran, so
/// that all the time that it was kept from running is in it. What it had of a processor counts in any case:
/// the watch may have been kept from running as well.
void GuiWatch::Watcher::charge(const ThreadProbe::Share &share)
{
    const nanoseconds unhindered = m_sinceLook - (share.inQueue - m_share.inQueue);
    const nanoseconds computed = share.onProcessor - m_share.onProcessor;
    m_stretch.add(std::max(unhindered, computed), nanoseconds(m_shownSinceLook.nsecsElapsed()), m_wait);
    beginLook(share);
    judge();
}

void GuiWatch::Watcher::judge()
{
    if (m_stretch.frozen() <= turnLimit())
        return;
    const bool isNews = m_freeze.time == 0ms;
    if (isNews)
        describeStack();
    m_freeze.time = std::chrono::duration_cast<milliseconds>(m_stretch.frozen());
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_worst || m_worst->time < m_freeze.time)
            m_worst = m_freeze;
    }
    if (isNews)
        Q_EMIT m_watch.noticed(m_freeze);
    if (m_freeze.time >= kPatience && !std::exchange(m_isLost, true))
        Q_EMIT m_watch.lost(m_freeze);
}

const StatedWait *GuiWatch::Watcher::statedWaitIn(const QList<void *> &stack)
{
    for (void *address : stack) {
        auto known = m_waitsAt.constFind(address);
        if (known == m_waitsAt.constEnd())
            known = m_waitsAt.insert(address, statedWaitAt(address));
        if (*known)
            return *known;
    }
    return nullptr;
}

void GuiWatch::Watcher::describeStack()
{
    m_freeze.stack.reserve(m_frozenStack.size());
    for (void *address : m_frozenStack) {
        m_freeze.stack.append(describeAddress(address));
        if (m_freeze.culprit.isEmpty() && !isSystemCode(address))
            m_freeze.culprit = m_freeze.stack.last();
    }
}

GuiWatch::GuiWatch(QObject *parent)
    : QObject(parent)
{
}

GuiWatch::~GuiWatch() = default;

void GuiWatch::start()
{
    stop();
    m_worst.reset();
    m_watcher = std::make_unique<Watcher>(*this);
    m_watcher->start();
}

void GuiWatch::stop()
{
    if (!m_watcher)
        return;
    m_watcher->end();
    m_worst = m_watcher->worst();
    m_watcher.reset();
}

bool GuiWatch::isWatching() const
{
    return m_watcher && m_watcher->isWatching();
}

std::optional<Freeze> GuiWatch::worst() const
{
    return m_watcher ? m_watcher->worst() : m_worst;
}

} // namespace rig
