#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

/// One run of the real quillon-host, from its start to its end.
struct HostRun {
    int status = -1; ///< -1: it could not be started, crashed or took too long
    QString output;
    QString errors;

    static HostRun with(const QStringList &arguments,
                        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        constexpr int kPatience = 60000;
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(QUILLON_HOST), arguments);
        HostRun run;
        if (process.waitForFinished(kPatience) && process.exitStatus() == QProcess::NormalExit)
            run.status = process.exitCode();
        run.output = QString::fromUtf8(process.readAllStandardOutput());
        run.errors = QString::fromUtf8(process.readAllStandardError());
        return run;
    }
};
