// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/ToolPlatform.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdlib>

namespace ToolPlatform {

namespace {
constexpr int kAskedToEnd = 15;
bool ignoresTerminate = false;

std::string utf8(const wchar_t *text)
{
    return std::filesystem::path(text).u8string();
}

DWORD shareMode(const std::string &words)
{
    if (words == "read-write")
        return FILE_SHARE_READ | FILE_SHARE_WRITE;
    return words == "read" ? FILE_SHARE_READ : 0;
}
} // namespace

std::filesystem::path home()
{
    const wchar_t *folder = _wgetenv(L"USERPROFILE");
    return folder ? folder : L"";
}

std::vector<std::string> arguments(int, char **)
{
    // From now on the thread can be asked to end.
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);

    int count = 0;
    wchar_t **words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int at = 1; at < count; ++at)
        result.push_back(utf8(words[at]));
    LocalFree(words);
    return result;
}

// A program without a window is asked by a message to its first thread.
void pauseFor(long milliseconds)
{
    const ULONGLONG end = GetTickCount64() + ULONGLONG(milliseconds);
    for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, DWORD(end - now), QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_CLOSE && !ignoresTerminate)
                std::exit(kAskedToEnd);
        }
    }
}

void ignoreTerminate()
{
    ignoresTerminate = true;
}

// An exception that is not handled would bring up the system's words for it and wait for an answer.
void crash()
{
    TerminateProcess(GetCurrentProcess(), UINT(EXCEPTION_ACCESS_VIOLATION));
    std::abort();
}

void holdMemory(std::size_t)
{
    // no test asks for it here
}

long startHelper()
{
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    SetEnvironmentVariableW(L"QUILLON_FAKE_TOOL", L"hang");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION helper{};
    if (!CreateProcessW(program, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &helper))
        return 0;
    CloseHandle(helper.hThread);
    CloseHandle(helper.hProcess);
    return long(helper.dwProcessId);
}

SharedWriter::SharedWriter(const std::filesystem::path &path, const std::string &share)
    : m_path(path)
    , m_file(CreateFileW(path.c_str(), GENERIC_WRITE, shareMode(share), nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr))
{
    if (m_file == INVALID_HANDLE_VALUE)
        std::exit(98);
}

void SharedWriter::write(const std::string &text, bool truncate)
{
    SetFilePointer(m_file, 0, nullptr, truncate ? FILE_BEGIN : FILE_END);
    if (truncate)
        SetEndOfFile(m_file);
    DWORD written = 0;
    WriteFile(m_file, text.data(), DWORD(text.size()), &written, nullptr);
}

} // namespace ToolPlatform
