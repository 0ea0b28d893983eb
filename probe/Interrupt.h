// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <chrono>
#include <optional>

namespace probe {

/// From here on neither Ctrl-C nor a request to end ends the program by itself: waitForInterrupt() notices.
void catchInterrupts();

/// Runs the event loop until an interrupt that was caught, before the call or during it, or the end of \a
/// limit.
void waitForInterrupt(std::optional<std::chrono::milliseconds> limit);

} // namespace probe
