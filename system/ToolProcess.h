// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QStringList>

#include <chrono>

class QProcess;

/// A console program that runs on behalf of a window. On Windows it gets a console that nobody sees,
/// whichever console this process has, and what it starts itself belongs to it. Should this process crash,
/// the program goes on: half a firmware is worse than a tool that nobody watches.
namespace ToolProcess {

/// Prepares \a process for its runs to come. To be called once.
void prepare(QProcess &process);

/// Starts \a program, to be written to and read from, and waits until it runs, at most for \a limit. False
/// when it does not.
bool start(QProcess &process, const QString &program, const QStringList &arguments,
           std::chrono::milliseconds limit);

/// Ends \a process, which cannot refuse, and on Windows everything that its last run has started and left
/// behind; what earlier runs left is not touched. Does not wait. Without a run nothing happens.
void kill(QProcess &process);

} // namespace ToolProcess
