// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace soak {

class Dice;

enum class Panels { One, Several };

/// One statement of whatever may happen to a device, a server and a panel at any time. None of them can fail.
QString randomMove(Dice &dice, Panels panels);

} // namespace soak
