// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

/// The bar runs from 0 to 100 over a whole run. A run over both chips gives each chip one half of it.
namespace QuillonFirmwareUpgrade::ProgressScale {

constexpr int kAllDone = 100;
constexpr int kPcHalfDone = 50;

/// What one start of the flashing tool is of its run.
enum class Part { WholeRun, PcHalf, OtgHalf };

/// Where the bar stands when the tool reports \a percent of its part.
constexpr int shown(int percent, Part part)
{
    switch (part) {
    case Part::WholeRun:
        break;
    case Part::PcHalf:
        return percent / 2;
    case Part::OtgHalf:
        return percent / 2 + kPcHalfDone;
    }
    return percent;
}

} // namespace QuillonFirmwareUpgrade::ProgressScale
