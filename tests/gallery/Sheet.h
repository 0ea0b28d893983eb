// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QImage>
#include <QString>

/// All pictures of a gallery at a glance.
namespace Sheet {

/// Every screen of every view, reduced, with its name; null when a picture is missing.
QImage contactSheet(const QString &gallery);

/// A page that shows every picture with its name and leads to its texts; its links are relative to the
/// gallery.
QString indexPage();

} // namespace Sheet
