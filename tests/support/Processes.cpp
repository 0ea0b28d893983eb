// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Processes.h"

#ifdef Q_OS_WIN

#include <windows.h>

bool isProcessAlive(qint64 processId)
{
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, DWORD(processId));
    if (!process)
        return false;
    const bool isAlive = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return isAlive;
}

int exitCodeOfAskedProgram()
{
    return 15;
}

int exitCodeOfKilledProgram()
{
    return 0xf291;
}

#else

#include <QFileInfo>

#include <csignal>

bool isProcessAlive(qint64 processId)
{
    return QFileInfo::exists(QStringLiteral("/proc/%1").arg(processId));
}

int exitCodeOfAskedProgram()
{
    return SIGTERM;
}

int exitCodeOfKilledProgram()
{
    return SIGKILL;
}

#endif
