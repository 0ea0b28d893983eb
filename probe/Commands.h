// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/CommandLine.h"
#include "probe/Device.h"
#include "probe/Output.h"

namespace probe {

/// Does what \a options ask for, on the bus that is installed, and answers with the exit status. Watch and
/// Trace print nothing themselves: an EventPrinter on the bus does.
int run(const Options &options, const Output &output, const DenialCheck &isDenied);

} // namespace probe
