// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

/// What the manager says, in order. It listens as an application does (queued, in the test's thread) or
/// directly on the library's threads. A hook runs inside the slot, before what it heard is recorded.
class Recorder : public QObject {
public:
    using Clock = std::chrono::steady_clock;

    /// What to do inside a slot; an empty hook does nothing.
    struct Hooks {
        std::function<void(const QStringList &paths)> onList;
        std::function<void(int status)> onStatus;
        std::function<void(const QByteArray &report)> onReport;
    };

    /// The hook that does what a panel does about a device that has gone.
    static void closeThreadsOfLostDevice(int status);

    explicit Recorder(Qt::ConnectionType type = Qt::QueuedConnection, Hooks hooks = {});

    QList<QStringList> lists() const;
    QList<QList<int>> productIds() const;
    QList<Clock::time_point> listTimes() const;
    QList<int> statuses() const;
    QList<QByteArray> reports() const;
    int count(int status) const { return int(statuses().count(status)); }
    void clear();

    /// Hears nothing more, and waits until a slot that is running has returned: afterwards no hook is called.
    /// The object itself must outlive the library's threads where it listens directly.
    void silence();

private:
    void hearList(const QStringList &paths, const QList<int> &productIds);
    void hearStatus(int status);
    void hearReport(const QByteArray &report);

    template <typename Work> void unlessSilent(Work work);

    const Hooks m_hooks;
    std::atomic<bool> m_silent{false};
    std::atomic<int> m_running{0};
    mutable std::mutex m_mutex;
    QList<QStringList> m_lists;
    QList<QList<int>> m_productIds;
    QList<Clock::time_point> m_listTimes;
    QList<int> m_statuses;
    QList<QByteArray> m_reports;
};

/// Silences a recorder whose hooks use what is declared before this.
class HookGuard {
public:
    explicit HookGuard(Recorder &recorder)
        : m_recorder(recorder)
    {
    }
    ~HookGuard() { m_recorder.silence(); }
    HookGuard(const HookGuard &) = delete;
    HookGuard &operator=(const HookGuard &) = delete;

private:
    Recorder &m_recorder;
};
