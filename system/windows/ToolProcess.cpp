#include "system/ToolProcess.h"

#include <QProcess>

#include <windows.h>

namespace ToolProcess {

namespace {
/// What QProcess::kill() leaves as exit code, by which it tells a killed program from one that has ended.
constexpr UINT kKilled = 0xf291;

/// The processes of a tool: a job takes in whatever its members start. Lives as long as the QProcess it
/// belongs to. It is deliberately not one that ends with its last handle.
class Family : public QObject {
    Q_OBJECT

public:
    explicit Family(QProcess *tool)
        : QObject(tool)
        , m_job(CreateJobObjectW(nullptr, nullptr))
    {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        // For tools that insist on leaving a job.
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_BREAKAWAY_OK;
        SetInformationJobObject(m_job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        // What the tool starts before this runs is not taken in, and has to end by itself.
        connect(tool, &QProcess::stateChanged, this, [this, tool](QProcess::ProcessState state) {
            if (state == QProcess::Running)
                takeIn(DWORD(tool->processId()));
        });
    }

    ~Family() override
    {
        if (m_job)
            CloseHandle(m_job);
    }

    void end() { TerminateJobObject(m_job, kKilled); }

private:
    void takeIn(DWORD processId)
    {
        const HANDLE process = OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, processId);
        if (!process)
            return;
        AssignProcessToJobObject(m_job, process);
        CloseHandle(process);
    }

    HANDLE m_job;
};
} // namespace

void prepare(QProcess &process)
{
    process.setCreateProcessArgumentsModifier(
        [](QProcess::CreateProcessArguments *arguments) { arguments->flags |= CREATE_NO_WINDOW; });
    new Family(&process);
}

void kill(QProcess &process)
{
    process.kill();
    if (Family *family = process.findChild<Family *>(QString(), Qt::FindDirectChildrenOnly))
        family->end();
}

} // namespace ToolProcess

#include "ToolProcess.moc"
