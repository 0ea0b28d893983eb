// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QImage>
#include <QRect>

/// How well a text can be read, measured from a picture.
namespace Contrast {

/// From 1 (the same) to 21 (black on white), by the relative luminance of both.
double ratio(QRgb a, QRgb b);

/// The contrast of the text whose strokes fill \a ink of \a picture with what is painted under it: the
/// colours right above and below it, no farther off than \a ground reaches. Where there are several, the one
/// on which the text is hardest to read. 0: there is nothing to measure.
double ofText(const QImage &picture, const QRect &ink, const QRect &ground);
/// The same where the ground fills all of the picture.
double ofText(const QImage &picture, const QRect &ink);

} // namespace Contrast
