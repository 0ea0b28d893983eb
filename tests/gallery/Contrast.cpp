// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Contrast.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace Contrast {

namespace {
/// Clear of the softest edge of a stroke.
constexpr int kClear = 2;
/// A ground that is narrower holds no letter.
constexpr int kLeastColumns = 8;

double linear(int channel)
{
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(QRgb colour)
{
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}
} // namespace

double ratio(QRgb a, QRgb b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

double ofText(const QImage &picture, const QRect &ink, const QRect &ground)
{
    // The edges of strokes are mixed with the ground: their cores show the text's colour.
    struct Ground {
        int columns = 0;
        double contrast = 1;
    };
    const QRect painted = ground & picture.rect();
    const QRect inside = ink & painted;
    const int above = std::max(inside.top() - kClear, painted.top());
    const int below = std::min(inside.bottom() + kClear, painted.bottom());
    QHash<QRgb, Ground> grounds;
    for (int x = inside.left(); x <= inside.right(); ++x) {
        const QRgb colour = picture.pixel(x, above);
        if (colour != picture.pixel(x, below))
            continue;
        Ground &found = grounds[colour];
        ++found.columns;
        for (int y = inside.top(); y <= inside.bottom(); ++y)
            found.contrast = std::max(found.contrast, ratio(picture.pixel(x, y), colour));
    }
    double worst = 0;
    for (const Ground &found : std::as_const(grounds)) {
        if (found.columns >= kLeastColumns)
            worst = worst == 0 ? found.contrast : std::min(worst, found.contrast);
    }
    return worst;
}

double ofText(const QImage &picture, const QRect &ink)
{
    return ofText(picture, ink, picture.rect());
}

} // namespace Contrast
