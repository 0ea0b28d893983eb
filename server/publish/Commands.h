// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "server/publish/CommandLine.h"

namespace publish {

/// Does what \a options ask for and tells about it; returns the exit status.
int run(const Options &options);

void print(const QString &line);
void complain(const QString &line); ///< on the standard error output, with the program's name

} // namespace publish
