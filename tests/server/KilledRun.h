// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

/// How a run ended that was to be killed.
enum class KilledRun {
    Killed,
    Finished, ///< before its turn came
    Untraceable ///< this system lets nobody look at a program's system calls
};

/// Runs a program and kills it when it is about to do the \a count th system call (from 1) that changes a
/// file or a folder. Its output is dropped.
KilledRun runAndKill(const QString &program, const QStringList &arguments, int count);
