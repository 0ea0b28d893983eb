// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace rig {

/// The machine's own time, which no program that makes clocks run faster reaches.
namespace RealTime {
std::chrono::nanoseconds now();
void sleep(std::chrono::nanoseconds time);
} // namespace RealTime

/// Looks at one thread of this process from another one. There is one at a time: it takes a signal for
/// itself.
class ThreadProbe {
public:
    ThreadProbe(); ///< looks at the thread that makes it
    ~ThreadProbe();
    ThreadProbe(const ThreadProbe &) = delete;
    ThreadProbe &operator=(const ThreadProbe &) = delete;

    static bool seesStacks(); ///< whether this system offers a way to

    /// How the kernel has treated the thread up to the last moment at which it ran.
    struct Share {
        std::chrono::nanoseconds onProcessor{0};
        std::chrono::nanoseconds inQueue{0}; ///< ready to run while others had the processors
    };
    Share share() const;

    /// What the thread was doing when a question reached it.
    struct Look {
        std::chrono::nanoseconds at{0}; ///< RealTime
        Share share;
        QList<void *> stack; ///< innermost call first
    };
    void ask(); ///< once, and then not before the answer was taken
    std::optional<Look> takeAnswer(); ///< nothing as long as the question has not reached the thread

    enum class State {
        Ready, ///< it runs, or stands in the queue
        Asleep, ///< until something happens
        Unreachable ///< waits in the kernel for a disk, or for a process of its making to become another
                    ///< program
    };
    State state() const;

    /// The other threads of the process, but for the one that asks.
    struct Others {
        bool areReady = false; ///< at least one is
        std::chrono::nanoseconds onProcessor{0}; ///< what all of them have had so far
    };
    Others others() const;

private:
    struct Place;
    std::unique_ptr<Place> m_place;
};

/// The function around \a address as its library exports it, with its arguments; empty where it does not.
QString exportedFunctionAt(void *address);
/// The same for people: of every function that the file still names, and with the file.
QString describeAddress(void *address);
bool isSystemCode(void *address); ///< of the system's libraries, or unknown

} // namespace rig
