// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/watch/GuiWatch.h"

namespace host {

class EventLog;

/// Prints and records the stack of a GUI thread that stands still, while it does. A thread that does not come
/// back takes the process with it, whose status is then kStatusFailed. \a log outlives the watch.
void reportFreezes(const rig::GuiWatch &watch, EventLog &log);

} // namespace host
