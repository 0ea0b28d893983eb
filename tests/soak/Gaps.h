// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace soak {

class Dice;

/// \a pattern, a statement with gaps such as "plug <chip>", with a word in each of them; one in brackets,
/// "[<chip>]", may stay out.
QString filled(const char *pattern, Dice &dice);

} // namespace soak
