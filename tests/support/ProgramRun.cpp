// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/ProgramRun.h"

#include <QProcess>

namespace {
QString text(QByteArray bytes)
{
    return QString::fromUtf8(bytes.replace("\r\n", "\n"));
}
} // namespace

ProgramRun ProgramRun::with(const QString &program, const QStringList &arguments,
                            const QProcessEnvironment &environment)
{
    constexpr int kPatience = 60000;
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    ProgramRun run;
    if (process.waitForFinished(kPatience) && process.exitStatus() == QProcess::NormalExit)
        run.status = process.exitCode();
    run.output = text(process.readAllStandardOutput());
    run.errors = text(process.readAllStandardError());
    return run;
}
