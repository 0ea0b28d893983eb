// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace soak {

/// A scenario of so many upgrades by the same panel, one after the other, in the order, the languages and
/// with the mishaps that \a seed chooses. Now and then the process is weighed, each time in the same
/// situation; by the end it may not have grown since a tenth of the day. The same seed gives the same text on
/// every machine.
QString day(int upgrades, quint32 seed);

} // namespace soak
