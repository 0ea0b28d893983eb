// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QWidget;

namespace rig {

/// How one of the panel's screens is told from the outside: by what can be seen, never by a text.
struct ScreenSigns {
    const char *name; ///< as scenarios call it
    QList<const char *> visible; ///< object names
    QList<const char *> hidden;
    const char *movie; ///< part of the file name that tipMoiveLb plays; null: not looked at
};

/// Every screen once; at most one of them fits at any time.
const QList<ScreenSigns> &screenTable();
QStringList screenNames();

/// Whether \a panel shows \a screen.
bool shows(const QWidget &panel, const ScreenSigns &screen);

/// The name of the screen that \a panel shows; empty while it shows none of the table (for a moment, between
/// two of them).
QString recognizeScreen(const QWidget &panel);

} // namespace rig
