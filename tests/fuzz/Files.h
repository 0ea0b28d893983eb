// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/fuzz/Input.h"

#include <QFile>
#include <QTemporaryDir>

namespace fuzz {

/// A file for readers that want one; it lies in a folder that goes with the process. \a name is always the
/// same one for a target: the folder holds one file.
inline QString fileNamed(const char *name)
{
    static const QTemporaryDir folder;
    return folder.filePath(QLatin1String(name));
}

inline void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    require(written, "the input could be written into a file");
}

} // namespace fuzz
