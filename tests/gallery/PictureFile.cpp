// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/PictureFile.h"

#include "tests/support/Pixels.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>
#include <optional>

namespace PictureFile {

namespace {
constexpr int kPaletteSize = 256;
constexpr QRgb kMark = qRgb(255, 0, 255);

const QRgb *line(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

/// The same pixels with a palette; nothing when they have too many colours for one.
std::optional<QImage> indexed(const QImage &image)
{
    QImage result(image.size(), QImage::Format_Indexed8);
    QHash<QRgb, uchar> places;
    QList<QRgb> palette;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = line(image, y)[x];
            auto place = places.constFind(colour);
            if (place == places.cend()) {
                if (palette.size() == kPaletteSize)
                    return {};
                place = places.insert(colour, uchar(palette.size()));
                palette.append(colour);
            }
            result.scanLine(y)[x] = *place;
        }
    }
    result.setColorTable(palette);
    return result;
}
} // namespace

bool save(const QImage &image, const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    // A size in metres or a scale would only make the file depend on more than the pixels.
    QImage plain = image.convertToFormat(QImage::Format_RGB32);
    plain.setDevicePixelRatio(1);
    QImageWriter writer(path, "png");
    writer.setQuality(0); // the smallest: png knows no loss
    return writer.write(indexed(plain).value_or(plain.convertToFormat(QImage::Format_RGB888)));
}

Difference compare(const QImage &expected, const QImage &actual, int tolerance)
{
    Difference difference;
    difference.sameSize = expected.size() == actual.size() && !actual.isNull();
    if (!difference.sameSize)
        return difference;
    const QImage a = expected.convertToFormat(QImage::Format_RGB32);
    const QImage b = actual.convertToFormat(QImage::Format_RGB32);
    difference.shown = b;
    for (int y = 0; y < a.height(); ++y) {
        auto *shown = reinterpret_cast<QRgb *>(difference.shown.scanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            const int distance = largestDifference(line(a, y)[x], line(b, y)[x]);
            difference.largest = std::max(difference.largest, distance);
            difference.pixels += distance > tolerance;
            shown[x] = distance > tolerance
                ? kMark
                : qRgb(qRed(shown[x]) / 2, qGreen(shown[x]) / 2, qBlue(shown[x]) / 2);
        }
    }
    return difference;
}

QImage withoutStrokes(const QImage &image, const QList<QRect> &places)
{
    QImage result = image.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&result);
    for (const QRect &place : places) {
        const QRect visible = place & result.rect();
        qint64 red = 0;
        qint64 green = 0;
        qint64 blue = 0;
        for (int y = visible.top(); y <= visible.bottom(); ++y) {
            for (int x = visible.left(); x <= visible.right(); ++x) {
                const QRgb colour = line(result, y)[x];
                red += qRed(colour);
                green += qGreen(colour);
                blue += qBlue(colour);
            }
        }
        const qint64 count = std::max<qint64>(1, qint64(visible.width()) * visible.height());
        painter.fillRect(visible, QColor(int(red / count), int(green / count), int(blue / count)));
    }
    return result;
}

} // namespace PictureFile
