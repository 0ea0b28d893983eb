// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FaultBoard.h"

#include <QByteArray>
#include <QHash>
#include <QVersionNumber>

namespace rig {

/// What the device's registers hold, as its PC interface shows them.
struct Registers {
    bool inBootLoader = false;
    QVersionNumber pcVersion; ///< null reads as 0.0.0
    QVersionNumber otgVersion;
    QHash<quint16, quint16> written{}; ///< what hosts wrote; mode and versions never show it
    std::optional<std::pair<Chip, QVersionNumber>> told{}; ///< the version that the latest request read
};

/// The reports, ID first, that answer \a report; what is written goes into \a registers.
QList<QByteArray> repliesTo(const QByteArray &report, Registers &registers, FaultBoard &faults);

} // namespace rig
