// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "SystemCalls.h"

#include <QHash>
#include <QtGlobal>

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

constexpr DWORD kListingFailed = 0x13;

std::mutex mutex;
QStringList opened;
QHash<HANDLE, QString> forReports; // what is open, by its path
std::atomic<int> waits = 0;
thread_local std::chrono::nanoseconds listingTime{};
std::atomic<bool> openIsRefused = false;
std::atomic<bool> openHangs = false;
std::atomic<bool> listingFails = false;
std::atomic<bool> reportsAreTold = true;

using OpenFile = decltype(&CreateFileW);
using Close = decltype(&CloseHandle);
using WaitForSeveral = decltype(&WaitForMultipleObjects);
using SizeOfList = DWORD(WINAPI *)(ULONG *, GUID *, const wchar_t *, ULONG);
using List = DWORD(WINAPI *)(GUID *, const wchar_t *, wchar_t *, ULONG, ULONG);
using AskReports = BOOLEAN(WINAPI *)(HANDLE, void **);

OpenFile openFile = nullptr;
Close closeIt = nullptr;
WaitForSeveral waitForSeveral = nullptr;
SizeOfList sizeOfList = nullptr;
List list = nullptr;
AskReports askReports = nullptr;

HANDLE WINAPI takeOpen(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security,
                       DWORD creation, DWORD flags, HANDLE model)
{
    const QString name = QString::fromWCharArray(path).toLower();
    {
        const std::lock_guard lock(mutex);
        opened.append(name);
    }
    while (openHangs)
        Sleep(1);
    if (openIsRefused && access != 0) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE file = openFile(path, access, sharing, security, creation, flags, model);
    if (file != INVALID_HANDLE_VALUE && access != 0) {
        const std::lock_guard lock(mutex);
        forReports.insert(file, name);
    }
    return file;
}

BOOL WINAPI takeClose(HANDLE handle)
{
    {
        const std::lock_guard lock(mutex);
        forReports.remove(handle);
    }
    return closeIt(handle);
}

DWORD WINAPI takeWait(DWORD count, const HANDLE *handles, BOOL all, DWORD timeout)
{
    ++waits;
    return waitForSeveral(count, handles, all, timeout);
}

/// Adds the time of its life to what this thread's lists took.
class ListingTimer {
public:
    ListingTimer() = default;
    ~ListingTimer() { listingTime += std::chrono::steady_clock::now() - m_start; }
    ListingTimer(const ListingTimer &) = delete;
    ListingTimer &operator=(const ListingTimer &) = delete;

private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

DWORD WINAPI takeSizeOfList(ULONG *size, GUID *interfaceClass, const wchar_t *device, ULONG flags)
{
    const ListingTimer timer;
    return listingFails ? kListingFailed : sizeOfList(size, interfaceClass, device, flags);
}

DWORD WINAPI takeList(GUID *interfaceClass, const wchar_t *device, wchar_t *names, ULONG size, ULONG flags)
{
    const ListingTimer timer;
    return list(interfaceClass, device, names, size, flags);
}

BOOLEAN WINAPI takeQuestion(HANDLE file, void **data)
{
    return reportsAreTold && askReports(file, data);
}

struct Redirection {
    const char *function;
    void *to;
    void **original;
};

const Redirection kRedirections[] = {
    {"CreateFileW", reinterpret_cast<void *>(&takeOpen), reinterpret_cast<void **>(&openFile)},
    {"CloseHandle", reinterpret_cast<void *>(&takeClose), reinterpret_cast<void **>(&closeIt)},
    {"WaitForMultipleObjects", reinterpret_cast<void *>(&takeWait),
     reinterpret_cast<void **>(&waitForSeveral)},
    {"CM_Get_Device_Interface_List_SizeW", reinterpret_cast<void *>(&takeSizeOfList),
     reinterpret_cast<void **>(&sizeOfList)},
    {"CM_Get_Device_Interface_ListW", reinterpret_cast<void *>(&takeList), reinterpret_cast<void **>(&list)},
    {"HidD_GetPreparsedData", reinterpret_cast<void *>(&takeQuestion),
     reinterpret_cast<void **>(&askReports)}};

/// Where the library looks the address of a function up that it has from another one; null: nowhere.
void **placeOf(char *library, const char *function)
{
    const auto *const head = reinterpret_cast<IMAGE_DOS_HEADER *>(library);
    const auto *const image = reinterpret_cast<IMAGE_NT_HEADERS *>(library + head->e_lfanew);
    const DWORD start = image->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto *from = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR *>(library + start); from->Name; ++from) {
        const auto *names = reinterpret_cast<IMAGE_THUNK_DATA *>(library + from->OriginalFirstThunk);
        auto *places = reinterpret_cast<void **>(library + from->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++places) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const auto *const name
                = reinterpret_cast<IMAGE_IMPORT_BY_NAME *>(library + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char *>(name->Name), function) == 0)
                return places;
        }
    }
    return nullptr;
}

void *replace(const char *function, void *by)
{
    auto *const library = reinterpret_cast<char *>(GetModuleHandleW(L"HIDCommunicator.dll"));
    void **const place = placeOf(library, function);
    if (!place)
        qFatal("the HID library does not call %s", function);
    DWORD before = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
    void *const original = std::exchange(*place, by);
    VirtualProtect(place, sizeof *place, before, &before);
    return original;
}

} // namespace

SystemCalls::SystemCalls()
{
    for (const Redirection &redirection : kRedirections)
        *redirection.original = replace(redirection.function, redirection.to);
}

/// The originals stay known: a thread may still be on its way to one.
SystemCalls::~SystemCalls()
{
    letThrough();
    for (const Redirection &redirection : kRedirections)
        replace(redirection.function, *redirection.original);
}

void SystemCalls::letThrough()
{
    setOpenRefused(false);
    setOpenHanging(false);
    setListingFailing(false);
    setReportsTold(true);
}

QStringList SystemCalls::takeOpened()
{
    const std::lock_guard lock(mutex);
    return std::exchange(opened, {});
}

int SystemCalls::openHandles(const QString &path)
{
    const std::lock_guard lock(mutex);
    return int(std::count_if(forReports.cbegin(), forReports.cend(),
                             [&](const QString &name) { return path.isEmpty() || name == path; }));
}

int SystemCalls::takeWaits()
{
    return waits.exchange(0);
}

std::chrono::nanoseconds SystemCalls::takeListingTime()
{
    return std::exchange(listingTime, {});
}

void SystemCalls::setOpenRefused(bool refused)
{
    openIsRefused = refused;
}

void SystemCalls::setOpenHanging(bool hanging)
{
    openHangs = hanging;
}

void SystemCalls::setListingFailing(bool failing)
{
    listingFails = failing;
}

void SystemCalls::setReportsTold(bool told)
{
    reportsAreTold = told;
}
