// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/ToolProcess.h"

#include <QProcess>

#include <windows.h>

namespace ToolProcess {

namespace {
/// What QProcess::kill() leaves as exit code, by which it tells a killed program from one that has ended.
constexpr UINT kKilled = 0xf291;

/// The processes of a tool's last run: a job takes in whatever its members start. Each run has a job of its
/// own, so that what an earlier one was allowed to leave behind does not end with the next. It is
/// deliberately not one that ends with its last handle.
class Family : public QObject {
    Q_OBJECT

public:
    explicit Family(QProcess *tool)
        : QObject(tool)
    {
        // What the tool starts before this runs is not taken in, and has to end by itself.
        connect(tool, &QProcess::stateChanged, this, [this, tool](QProcess::ProcessState state) {
            if (state == QProcess::Running)
                takeIn(DWORD(tool->processId()));
        });
    }

    ~Family() override { forget(); }

    void end()
    {
        if (m_job)
            TerminateJobObject(m_job, kKilled);
    }

private:
    void forget()
    {
        if (m_job)
            CloseHandle(m_job);
        m_job = nullptr;
    }

    void takeIn(DWORD processId)
    {
        forget();
        m_job = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        // For tools that insist on leaving a job.
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_BREAKAWAY_OK;
        SetInformationJobObject(m_job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        const HANDLE process = OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, processId);
        if (!process)
            return;
        AssignProcessToJobObject(m_job, process);
        CloseHandle(process);
    }

    HANDLE m_job = nullptr; // of the last run
};
} // namespace

void prepare(QProcess &process)
{
    process.setCreateProcessArgumentsModifier(
        [](QProcess::CreateProcessArguments *arguments) { arguments->flags |= CREATE_NO_WINDOW; });
    new Family(&process);
}

bool start(QProcess &process, const QString &program, const QStringList &arguments,
           std::chrono::milliseconds limit)
{
    process.start(program, arguments, QIODevice::ReadWrite);
    return process.waitForStarted(int(limit.count()));
}

void kill(QProcess &process)
{
    process.kill();
    if (Family *family = process.findChild<Family *>(QString(), Qt::FindDirectChildrenOnly))
        family->end();
}

} // namespace ToolProcess

#include "ToolProcess.moc"
