// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

/// Whether the user may open a device at all. On Linux that is decided by the owner and the mode of its
/// device file, which a rules file for udev sets; other systems leave HID devices to everybody.
namespace DeviceAccess {

/// Whether the device that the HID library lists as \a path is attached and the user has no permission to
/// read and write it. False where nothing is known about it. Any thread.
bool isDenied(const QString &path);

/// The same for a device file, for example "/dev/hidraw3".
bool isFileDenied(const QString &deviceFile);

/// What to tell a user who is denied: two lines, the second one a command that installs the rules file and
/// has udev apply it. Empty on systems where there is nothing to install.
QString hint();

/// \a path as one word of a shell's command line.
QString shellWord(const QString &path);

} // namespace DeviceAccess
