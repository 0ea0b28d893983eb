// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Sharpness.h"

#include "tests/support/Pixels.h"

#include <QList>
#include <QTransform>

#include <algorithm>
#include <numeric>

namespace Sharpness {

namespace {
/// A smaller change is no edge.
constexpr int kEdge = 24;
/// Of edge pixels, in each direction.
constexpr int kLeast = 24;
/// The scales that screens have are quarters.
constexpr int kParts = 4;

/// After how many device pixels the blocks of an enlarged picture repeat.
int periodOf(double scale)
{
    const int parts = int(scale * kParts);
    return parts / std::gcd(parts, kParts);
}

/// How often the colour changes from one pixel to the next of a line, by the place in the period of the
/// second one.
QList<int> changesAlongLines(const QImage &picture, int period)
{
    QList<int> changes(period);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 1; x < picture.width(); ++x)
            changes[x % period] += largestDifference(picture.pixel(x - 1, y), picture.pixel(x, y)) > kEdge;
    }
    return changes;
}

double shareOfRarest(const QList<int> &changes)
{
    const int all = std::accumulate(changes.begin(), changes.end(), 0);
    if (all < kLeast)
        return -1;
    return double(*std::min_element(changes.begin(), changes.end())) * double(changes.size()) / all;
}
} // namespace

double ofPicture(const QImage &picture, double scale)
{
    const int period = periodOf(scale);
    const QImage turned = picture.transformed(QTransform().rotate(90));
    return std::min(shareOfRarest(changesAlongLines(picture, period)),
                    shareOfRarest(changesAlongLines(turned, period)));
}

} // namespace Sharpness
