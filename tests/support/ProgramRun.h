// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// One run of a program, from its start to its end.
struct ProgramRun {
    int status = -1; ///< -1: it could not be started, crashed or took more than a minute
    QString output; ///< lines end with a line feed on every system
    QString errors;

    static ProgramRun with(const QString &program, const QStringList &arguments,
                           const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
};
