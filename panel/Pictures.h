// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QPixmap>
#include <QSize>

/// The panel's still pictures, each decoded when it is first asked for and kept for every panel to come,
/// until the application goes. GUI thread only; needs a QApplication.
namespace QuillonFirmwareUpgrade::Pictures {

/// The picture in \a file of the resource bundle's pictures, brought to \a size, as sharp as the sharpest
/// screen needs it.
QPixmap scaled(const char *file, QSize size);

} // namespace QuillonFirmwareUpgrade::Pictures
