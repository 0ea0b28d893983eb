#pragma once

#include <QString>

namespace host {

/// Lines for a person at the terminal. They appear at once, also when the output goes into a pipe or a file.
namespace Terminal {

void print(const QString &line); ///< to the standard output
void complain(const QString &line); ///< to the standard error, with the program's name in front

} // namespace Terminal

} // namespace host
