// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QColor>
#include <QString>

namespace host {

/// The panel's colours, so that the window around it looks like one piece with it.
namespace Colours {
constexpr QColor kBackground{31, 32, 40};
constexpr QColor kCard{48, 49, 60};
constexpr QColor kLine{69, 70, 83};
/// A button under the pointer.
constexpr QColor kPointedAt{94, 96, 112};
constexpr QColor kText{255, 255, 255};
constexpr QColor kFaintText{150, 152, 166};
/// Under white text: the panel's blue is too light for small letters.
constexpr QColor kSelection{72, 94, 224};
constexpr QColor kTeal{47, 212, 179};
} // namespace Colours

QString windowStyleSheet();

/// What a style sheet does not reach, such as the frames of lists that drop down, is dark as well on every
/// desktop. Needs the application object.
void makeApplicationDark();

} // namespace host
