// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/gallery/Views.h"

#include <QSet>
#include <QString>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

/// Takes the pictures of a tour, each at a moment in which nothing else happens, with the animation at a
/// fixed frame. GUI thread.
class Camera {
public:
    /// Pictures go into the gallery in \a folder, as those of \a view.
    Camera(const QString &folder, const Gallery::View &view);

    /// Pictures \a panel as \a screen, and writes the texts beside the picture.
    void take(QWidget &panel, const QString &screen);

    /// Whether every screen was pictured, and everything written.
    bool isComplete() const;

private:
    QString m_folder;
    Gallery::View m_view;
    QSet<QString> m_taken;
    bool m_isWritten = true;
};
