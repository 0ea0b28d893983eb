// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/trace/Trace.h"

#include <HIDCommunicator/HidTransport.h>

#include <functional>
#include <memory>

namespace probe {

/// A bus, and what a transport alone cannot tell: whether the device at \a path is there but may not be
/// opened.
struct Bus {
    std::unique_ptr<HIDCommunicator::HidTransport> transport;
    std::function<bool(const QString &path)> isDenied;
};

/// Called for one event at a time, in order, by whichever thread caused it.
using TraceSink = std::function<void(const TraceEvent &event)>;

/// \a bus with \a sink listening in: nothing is changed on the way. Devices are seen to come and go when
/// somebody enumerates. Reports count as sent when they are handed over, so that no answer comes before them.
Bus tap(Bus bus, TraceSink sink);

} // namespace probe
