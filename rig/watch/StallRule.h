// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>

#include <chrono>

namespace rig {

/// What the GUI thread is allowed: this long, in real time, without a turn of its event loop. The sanitizers
/// make everything several times as slow.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::chrono::milliseconds kTurnLimit{1000};
#else
constexpr std::chrono::milliseconds kTurnLimit{250};
#endif

/// A call in which the panel means to wait without turning the loop, for at most so long on the panel's own
/// clock.
struct StatedWait {
    const char *function; ///< as a stack names it, up to its arguments
    std::chrono::milliseconds limit;
};
const QList<StatedWait> &statedWaits();

/// One stretch without a turn, added up from looks at the GUI thread's stack: what it did when looked at
/// counts for all the time since the look before.
class Stretch {
public:
    /// \a real: the time that passed; \a shown: what the panel's clock made of it, which may run faster;
    /// \a wait: the stated wait that was seen, if any.
    void add(std::chrono::nanoseconds real, std::chrono::nanoseconds shown, const StatedWait *wait = nullptr);

    std::chrono::nanoseconds frozen() const { return m_frozen; } ///< without the stated waits

private:
    std::chrono::nanoseconds m_frozen{0};
    std::chrono::nanoseconds m_waited{0}; // on the panel's clock
};

} // namespace rig
