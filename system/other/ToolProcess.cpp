// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/ToolProcess.h"

#include <QFileInfo>
#include <QProcess>

namespace ToolProcess {

void prepare(QProcess &) { }

bool start(QProcess &process, const QString &program, const QStringList &arguments,
           std::chrono::milliseconds limit)
{
    // Qt 6.4 loses a file descriptor with every program that cannot be started.
    const QFileInfo file(program);
    if (!file.isFile() || !file.isExecutable())
        return false;
    process.start(program, arguments, QIODevice::ReadWrite);
    return process.waitForStarted(int(limit.count()));
}

void kill(QProcess &process)
{
    process.kill();
}

} // namespace ToolProcess
