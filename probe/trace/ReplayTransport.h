// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/trace/TappedTransport.h"
#include "probe/trace/Trace.h"

namespace probe {

/// Whether a device that leaves looks back.
enum class Pace {
    AsRecorded, ///< it leaves when it left
    /// It waits some seconds for the questions that have not come yet: who asks slower than the first time,
    /// on a busy machine for example, still hears everything.
    WaitsForQuestions
};

/// The devices of \a trace, played back as a bus. They come and go as they did, beginning with the first
/// plug. A device answers a question as it answered it then, and after the same time: one that was asked
/// several times gives its answers in that order and then repeats the last one, whatever else is asked in
/// between; one that was never asked is not answered.
Bus replay(const Trace &trace, Pace pace = Pace::WaitsForQuestions);

} // namespace probe
