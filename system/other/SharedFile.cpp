// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/SharedFile.h"

#include <QFile>

namespace SharedFile {

namespace {
constexpr QIODevice::OpenMode kForReading = QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered;
} // namespace

bool openForReading(QFile &file)
{
    return file.open(kForReading);
}

bool isHeld(const QString &)
{
    return false;
}

} // namespace SharedFile
