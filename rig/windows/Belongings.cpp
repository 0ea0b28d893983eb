// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What Windows tells of this process. It gives threads and handles no names.
#include "rig/Belongings.h"

#include <windows.h>

#include <tlhelp32.h>

namespace rig {

namespace {

// Calls look(entry) for each entry of a snapshot; the two functions begin and go on with one.
template <typename Entry, typename Begin, typename GoOn, typename Look>
void forEachIn(DWORD what, Begin begin, GoOn goOn, Look look)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(what, 0);
    Entry entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = begin(snapshot, &entry); more; more = goOn(snapshot, &entry))
        look(entry);
    CloseHandle(snapshot);
}

} // namespace

QStringList Belongings::threadsOfThisProcess()
{
    QStringList threads;
    forEachIn<THREADENTRY32>(TH32CS_SNAPTHREAD, Thread32First, Thread32Next,
                             [&](const THREADENTRY32 &thread) {
                                 if (thread.th32OwnerProcessID == GetCurrentProcessId())
                                     threads.append(QStringLiteral("of this process"));
                             });
    return threads;
}

QStringList Belongings::handlesOfThisProcess()
{
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return QStringList(qsizetype(handles), QStringLiteral("of this process"));
}

QStringList Belongings::processesOfThisProcess()
{
    QStringList names;
    forEachIn<PROCESSENTRY32W>(TH32CS_SNAPPROCESS, Process32FirstW, Process32NextW,
                               [&](const PROCESSENTRY32W &process) {
                                   if (process.th32ParentProcessID == GetCurrentProcessId())
                                       names.append(QString::fromWCharArray(process.szExeFile));
                               });
    return names;
}

} // namespace rig
