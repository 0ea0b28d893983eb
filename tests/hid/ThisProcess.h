#pragma once

#include <QDeadlineTimer>
#include <QDir>
#include <QThread>

#ifdef Q_OS_WIN
#include <windows.h>

#include <tlhelp32.h>

inline int threadsOfThisProcess()
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread))
        count += thread.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    CloseHandle(snapshot);
    return count;
}

inline int descriptorsOfThisProcess()
{
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return int(handles);
}
#else
/// Folders of the system that tell of this process.
inline int entriesOf(const QString &folder)
{
    return int(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size());
}

inline int threadsOfThisProcess()
{
    return entriesOf(QStringLiteral("/proc/self/task"));
}

inline int descriptorsOfThisProcess()
{
    return entriesOf(QStringLiteral("/proc/self/fd"));
}
#endif

/// What \a count comes to once it stands still: the system lists a thread for a moment longer than it takes
/// to be joined.
template <typename Count> int settled(Count count)
{
    constexpr int kLooks = 10;
    constexpr unsigned long kPauseMs = 20;
    const QDeadlineTimer patience(10000);
    int last = count();
    for (int same = 0; same < kLooks && !patience.hasExpired(); ++same) {
        QThread::msleep(kPauseMs);
        const int now = count();
        if (now != last)
            same = 0;
        last = now;
    }
    return last;
}
