// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace soak {

// The lines that hold what may be dropped while a scenario is made smaller.
constexpr char kStormBegins[] = "# The storm begins.";
constexpr char kStormEnds[] = "# The storm is over.";

/// A scenario in which much goes wrong at once, in the order and at the moments that \a seed chooses, and
/// after which a fresh panel has to upgrade a device to the end and nothing may be left behind. The same seed
/// gives the same text on every machine.
QString storm(quint32 seed);

} // namespace soak
