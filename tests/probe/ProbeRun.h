#pragma once

#include <QProcess>
#include <QStringList>

/// One run of the real quillon-probe, from its start to its end.
struct ProbeRun {
    int status = -1; ///< -1: it could not be started, crashed or took too long
    QString output;
    QString errors;

    static ProbeRun with(const QStringList &arguments)
    {
        constexpr int kPatience = 60000;
        QProcess process;
        process.start(QStringLiteral(QUILLON_PROBE), arguments);
        ProbeRun run;
        if (process.waitForFinished(kPatience) && process.exitStatus() == QProcess::NormalExit)
            run.status = process.exitCode();
        run.output = QString::fromUtf8(process.readAllStandardOutput());
        run.errors = QString::fromUtf8(process.readAllStandardError());
        return run;
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
