// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

namespace host {

/// What passes between this program and the terminal, the script or the desktop that it was started from, in
/// every script that a name can be written in.
namespace Terminal {

/// The command line, the program's name first. Needs no application object.
QStringList arguments(int argc, char *argv[]);

/// Changes the environment of this program and of those that it starts.
void setVariable(const char *name, const QString &value);

// Lines for a person. They appear at once, also when the output goes into a pipe or a file. On Windows, where
// a program with windows has no terminal, they appear in the one it was started from; without one nobody
// reads them.
void print(const QString &line); ///< to the standard output
void complain(const QString &line); ///< to the standard error, with the program's name in front

} // namespace Terminal

} // namespace host
