// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/support/Files.h"

#include <QTemporaryDir>

/// A scenario of these lines, in a folder that lives as long.
struct ScenarioFile {
    explicit ScenarioFile(const QByteArray &lines) { writeFile(path, lines); }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("x.scn"));
};
