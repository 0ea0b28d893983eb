// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QRect>
#include <QString>

/// What there is to see: every screen of the panel, for both models, in both languages, at three scales.
namespace Gallery {

struct Screen {
    const char *name; ///< as the tour calls its pictures
    const char *title; ///< for people
};

/// In the order of an upgrade.
const QList<Screen> &screens();

/// One way to see all screens; has a folder of its own.
struct View {
    QString model; ///< "R1" or "R2"
    QString language; ///< "en" or "zh"
    double scale = 1; ///< device pixels a pixel

    QString folder() const; ///< "R2-en", "R2-en@1.5x"
};

/// Every view, by model, then language, then scale.
QList<View> views();
QList<View> viewsAt(double scale);

/// What a place among the panel's pixels covers of a picture, in device pixels.
QRect devicePixels(const QRect &place, double scale);

/// "pictures/R2-en@2x/too-old.png" and the like, relative to a gallery.
QString picturePath(const View &view, const QString &screen);
/// The visible widgets of that picture as text, beside it, for people and for comparison.
QString widgetsPath(const View &view, const QString &screen);
/// The same with what was measured of each, for programs.
QString factsPath(const View &view, const QString &screen);

} // namespace Gallery
