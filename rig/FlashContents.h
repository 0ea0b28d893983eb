// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Identity.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace rig {

/// What the flash of the chip with \a identity holds, in the words of scenarios: "empty", the version of an
/// intact image for this chip, "partial" for one that ends too early, "damaged" for everything else.
QString contentsOf(const QByteArray &flash, const ChipIdentity &identity);

QStringList contentsNames(); ///< the words besides the versions

} // namespace rig
