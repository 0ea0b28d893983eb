// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace probe {

/// What a product ID of the family says about the device behind it.
struct Product {
    QString model; ///< "R1", "R2", or "?" for a product ID that is not known
    QString role; ///< in words: the chip, and whether it runs or sits in its boot loader
    bool answers = false; ///< whether this interface answers the register protocol
};

Product productOf(int productId);

/// "000e", as in a device's path.
QString idText(int id);

} // namespace probe
