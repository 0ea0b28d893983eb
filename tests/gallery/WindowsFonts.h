// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

/// How large a text is in the fonts that the panel is made for, Segoe UI and Microsoft YaHei, on a machine
/// that has neither.
namespace WindowsFonts {

/// The width of one line in pixels, unhinted and without kerning.
double widthOf(const QString &line, int pixelSize, bool bold);

/// From one line to the next, in pixels.
double lineHeight(int pixelSize);

} // namespace WindowsFonts
