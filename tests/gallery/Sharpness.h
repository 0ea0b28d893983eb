// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QImage>

/// Whether a picture was drawn for the screen's pixels, measured from the picture.
namespace Sharpness {

/// A picture made for fewer pixels and enlarged to \a scale times its size repeats pixels: at 2 it consists
/// of blocks of 2 by 2 equal ones, at 1.5 of blocks of 1 and 2. Colours change between blocks only, so that
/// some columns and lines are never the first of a new colour. Says how often the rarest of them is, measured
/// by how often all of them would be alike: 0 for a picture enlarged, about 1 for one with edges anywhere.
/// Below 0: there are too few edges to tell.
double ofPicture(const QImage &picture, double scale);

} // namespace Sharpness
