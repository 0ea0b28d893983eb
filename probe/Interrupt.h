#pragma once

#include <chrono>
#include <optional>

namespace probe {

/// Runs the event loop until Ctrl-C, a request to end, or the end of \a limit. From the first call on,
/// neither of them ends the program by itself.
void waitForInterrupt(std::optional<std::chrono::milliseconds> limit);

} // namespace probe
