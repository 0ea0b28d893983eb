// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

/// Pictures on disk, and what two of them differ in.
namespace PictureFile {

/// Writes \a image to \a path, making its folder, as small as these pixels can be kept. False: it could not
/// be written.
bool save(const QImage &image, const QString &path);

struct Difference {
    bool sameSize = false;
    int pixels = 0; ///< that differ by more than the tolerance in any channel
    int largest = 0; ///< of all channels of all pixels
    QImage shown; ///< the actual picture, darkened, with what differs in magenta
};

/// Two releases of a font library may round an edge differently; a person does not see this much.
constexpr int kTolerance = 8;
/// And so few pixels of more than that are no change of the design.
constexpr int kToleratedPixels = 12;

Difference compare(const QImage &expected, const QImage &actual, int tolerance = kTolerance);

/// \a image with each of \a places filled with the mean colour of what was in it: letters lose their shape,
/// but not their amount and colour.
QImage withoutStrokes(const QImage &image, const QList<QRect> &places);

} // namespace PictureFile
