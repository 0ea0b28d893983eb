// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/SharedFile.h"

#include <QFile>

namespace SharedFile {

bool openForReading(QFile &file)
{
    return file.open(QIODevice::ReadOnly | QIODevice::Text);
}

bool isHeld(const QString &)
{
    return false;
}

} // namespace SharedFile
