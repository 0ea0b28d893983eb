// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/support/ProgramRun.h"

/// One run of the real quillon-probe.
struct ProbeRun : ProgramRun {
    static ProbeRun with(const QStringList &arguments)
    {
        return {ProgramRun::with(QStringLiteral(QUILLON_PROBE), arguments)};
    }

    /// The same on a device that a trace plays.
    static ProbeRun onTrace(const QString &trace, const QStringList &arguments)
    {
        return with(arguments + QStringList{QStringLiteral("--replay"), traceFile(trace)});
    }

    static QString traceFile(const QString &name)
    {
        return QStringLiteral(QUILLON_TRACES "/%1.trace").arg(name);
    }
};
