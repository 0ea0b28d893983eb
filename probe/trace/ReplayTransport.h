#pragma once

#include "probe/trace/TappedTransport.h"
#include "probe/trace/Trace.h"

namespace probe {

/// The devices of \a trace, played back as a bus. They come and go as they did, beginning with the first
/// plug. A device answers a question as it answered it then, and after the same time: one that was asked
/// several times gives its answers in that order and then repeats the last one, whatever else is asked in
/// between; one that was never asked is not answered. A device that is open waits some seconds with leaving
/// for questions that have not come yet: who asks slower than the first time still hears everything.
Bus replay(const Trace &trace);

} // namespace probe
