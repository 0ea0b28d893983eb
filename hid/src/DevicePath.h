// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace HIDCommunicator {

/// What the path of a device on Linux says. It has the shape of the paths that Windows gives, built around
/// the name of the hidraw node, so that one way of reading the identity out of a path serves both systems:
///
///     \\?\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030}
struct DevicePath {
    int vendorId = 0;
    int productId = 0;
    QString node; ///< "hidraw" and a number, without folder

    QString toString() const;
    QByteArray deviceFile() const; ///< for example "/dev/hidraw3"
    /// Reads any spelling, upper or lower case; nothing when \a path is not of the shape above.
    static std::optional<DevicePath> fromString(const QString &path);
};

} // namespace HIDCommunicator
