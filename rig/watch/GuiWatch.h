// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QObject>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

namespace rig {

/// A stretch in which the GUI thread did not turn its event loop for longer than kTurnLimit.
struct Freeze {
    std::chrono::milliseconds time{0}; ///< so far, or altogether once the loop has turned
    QStringList
        stack; ///< the GUI thread's, innermost call first, one line each; empty where none is to be had
    QString culprit; ///< the innermost call that is not the system's
};

/// Watches from a thread of its own whether the GUI thread turns its event loop, be it a nested one: it posts
/// an event ever again and waits for it to be delivered. An idle loop delivers it at once.
///
/// It goes by real time, however fast the panel's clock runs, and blames no busy machine: not counted are
/// time in which the GUI thread stood ready while others had the processors, time in which it waited for a
/// disk or for a thread that stood ready, and more than a moment of each pause that the watch's own thread
/// was forced into. What looks like a freeze is judged by the GUI thread's stack: see statedWaits(). Where no
/// stack is to be had the longest of those waits is granted everywhere.
class GuiWatch : public QObject {
    Q_OBJECT

public:
    explicit GuiWatch(QObject *parent = nullptr); ///< on the GUI thread
    ~GuiWatch() override;

    void start();
    void stop();
    bool isWatching() const; ///< a moment after the start and the next turn

    /// The longest freeze since the start.
    std::optional<Freeze> worst() const;

    /// How long a loop that does not turn is waited for before it counts as lost.
    static constexpr std::chrono::seconds kPatience{20};

Q_SIGNALS:
    /// A freeze passes the limit. Emitted by the watch's own thread, for the GUI thread is not to be had.
    void noticed(const rig::Freeze &freeze);
    /// It has lasted for kPatience and may never end. Emitted by the watch's own thread.
    void lost(const rig::Freeze &freeze);

private:
    class Watcher;
    std::unique_ptr<Watcher> m_watcher;
    std::optional<Freeze> m_worst; // of a watcher that has ended
};

} // namespace rig
