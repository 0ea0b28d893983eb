// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Terminal.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdlib>

namespace host::Terminal {

namespace {

/// The console that this program was started from; null when it was none.
HANDLE parentConsole()
{
    if (!AttachConsole(ATTACH_PARENT_PROCESS) && GetLastError() != ERROR_ACCESS_DENIED)
        return nullptr;
    const HANDLE console
        = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_EXISTING, 0, nullptr);
    return console == INVALID_HANDLE_VALUE ? nullptr : console;
}

/// A pipe or a file that was given to this program, or else the console.
HANDLE stream(DWORD which)
{
    const HANDLE given = GetStdHandle(which);
    if (given && given != INVALID_HANDLE_VALUE && GetFileType(given) != FILE_TYPE_UNKNOWN)
        return given;
    static const HANDLE console = parentConsole();
    return console;
}

void write(HANDLE stream, const QString &line)
{
    DWORD written = 0;
    if (DWORD mode; GetConsoleMode(stream, &mode)) {
        const QString text = line + QStringLiteral("\r\n");
        WriteConsoleW(stream, text.utf16(), DWORD(text.size()), &written, nullptr);
    } else {
        const QByteArray text = line.toUtf8() + '\n';
        WriteFile(stream, text.constData(), DWORD(text.size()), &written, nullptr);
    }
}

} // namespace

// What main() is given went through a code page that may lack half of the letters.
QStringList arguments(int, char *[])
{
    int count = 0;
    wchar_t **words = CommandLineToArgvW(GetCommandLineW(), &count);
    QStringList result;
    for (int at = 0; at < count; ++at)
        result.append(QString::fromWCharArray(words[at]));
    LocalFree(words);
    return result;
}

void setVariable(const char *name, const QString &value)
{
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), value.toStdWString().c_str());
}

void print(const QString &line)
{
    write(stream(STD_OUTPUT_HANDLE), line);
}

void complain(const QString &line)
{
    write(stream(STD_ERROR_HANDLE), QStringLiteral("quillon-host: ") + line);
}

} // namespace host::Terminal
