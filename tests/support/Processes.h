// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QtGlobal>

/// Whether the process with this ID runs, or has ended and its parent does not know yet. IDs are used again:
/// the answer is only good for a process that was seen a moment ago.
bool isProcessAlive(qint64 processId);

/// The exit code of a program that QProcess::terminate() or QProcess::kill() has ended.
int exitCodeOfAskedProgram();
int exitCodeOfKilledProgram();
