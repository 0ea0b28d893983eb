// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "flash/StallRule.h"

#include <chrono>

using namespace std::chrono_literals;

namespace QuillonFirmwareUpgrade::StallRule {

namespace {
/// A percentage that stands for this long means that the tool hangs.
constexpr auto kStallLimit = 3s;
} // namespace

Verdict judge(const Memory &last, int percent, const QDateTime &now)
{
    if (last.percent == kNothingYet)
        return percent >= 1 ? Verdict::News : Verdict::Standing;
    if (percent != last.percent)
        return Verdict::News;
    return last.since.isValid() && last.since.secsTo(now) >= kStallLimit.count() ? Verdict::Stalled
                                                                                 : Verdict::Standing;
}

} // namespace QuillonFirmwareUpgrade::StallRule
