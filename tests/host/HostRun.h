// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/support/ProgramRun.h"

/// One run of the real quillon-host.
struct HostRun : ProgramRun {
    static HostRun with(const QStringList &arguments,
                        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        return {ProgramRun::with(QStringLiteral(QUILLON_HOST), arguments, environment)};
    }
};
