// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "hid/access/DeviceAccess.h"

#include "DevicePath.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <unistd.h>

namespace DeviceAccess {

namespace {

/// The rules file that came with the program, which lies in bin or in a folder of its own below libexec;
/// else, in a build folder, the one of the tree.
QString rulesFile()
{
    for (const QString &root : {QStringLiteral("/.."), QStringLiteral("/../..")}) {
        const QFileInfo installed(QCoreApplication::applicationDirPath() + root
                                  + QStringLiteral("/lib/udev/rules.d/" QUILLON_UDEV_RULES_NAME));
        if (installed.exists())
            return installed.canonicalFilePath();
    }
    return QStringLiteral(QUILLON_UDEV_RULES);
}

} // namespace

bool isDenied(const QString &path)
{
    const auto device = HIDCommunicator::DevicePath::fromString(path);
    return device && isFileDenied(QFile::decodeName(device->deviceFile()));
}

bool isFileDenied(const QString &deviceFile)
{
    return access(QFile::encodeName(deviceFile).constData(), R_OK | W_OK) != 0
        && (errno == EACCES || errno == EPERM);
}

QString hint()
{
    return QStringLiteral(
               "A device is plugged in that you have no permission to open. This command grants it for "
               "good:\n"
               "  sudo install -D -m 644 %1 /etc/udev/rules.d/" QUILLON_UDEV_RULES_NAME
               " && sudo udevadm control --reload && sudo udevadm trigger --subsystem-match=hidraw")
        .arg(shellWord(rulesFile()));
}

} // namespace DeviceAccess
