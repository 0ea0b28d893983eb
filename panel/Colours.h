// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "widgets/ClickableProgressBar.h"

/// The colours of the bar. What each of them tells the user is in its name.
namespace QuillonFirmwareUpgrade::Colours {

constexpr QColor kBarIdle = ClickableProgressBar::kDefaultBackground;
constexpr QColor kBarReady{87, 110, 246};
constexpr QColor kBarBlocked{248, 74, 75};
constexpr QColor kBarRetry{35, 77, 75};
constexpr QColor kBarRetryBorder{47, 212, 179};

constexpr QColor kProgress = ClickableProgressBar::kDefaultProgress;
/// Also marks, for the code that asks the bar for it, that the panel waits for the OTG chip.
constexpr QColor kProgressWaitingForOtg{248, 74, 75};

} // namespace QuillonFirmwareUpgrade::Colours
