// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QDateTime>

/// Tells a flashing tool that hangs from one that works, by the percentages that it reports.
namespace QuillonFirmwareUpgrade::StallRule {

constexpr int kNothingYet = -1;

/// The last percentage that was news, and when it came.
struct Memory {
    int percent = kNothingYet;
    QDateTime since;
};

enum class Verdict {
    News, ///< to be remembered, with the moment it came
    Standing, ///< nothing new yet
    Stalled ///< the same for so long that the tool hangs
};

/// What \a percent, read at \a now, says. A 0 % at the start is never news, and so never becomes a stall: a
/// tool may take long to begin.
Verdict judge(const Memory &last, int percent, const QDateTime &now);

} // namespace QuillonFirmwareUpgrade::StallRule
