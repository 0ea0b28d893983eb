// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A configuration manager for Wine, whose own lists no interfaces and tells of none: the functions of
// Windows' cfgmgr32.dll that the HID library uses, by way of older ones that Wine has. It lies beside a
// test's program, where it is found before the system's.
#include <windows.h>

#include <dbt.h>
#include <setupapi.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

namespace {

constexpr DWORD kSuccess = 0;
constexpr DWORD kFailure = 0x13;
constexpr DWORD kBufferSmall = 0x1A;
constexpr DWORD kArrival = 0;
constexpr DWORD kRemoval = 1;

/// The names, each with a zero behind it, and one more zero at the end.
std::wstring interfaceNames(const GUID &interfaceClass)
{
    std::wstring names;
    const HDEVINFO devices
        = SetupDiGetClassDevsW(&interfaceClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA found{};
    found.cbSize = sizeof found;
    for (DWORD index = 0; SetupDiEnumDeviceInterfaces(devices, nullptr, &interfaceClass, index, &found);
         ++index) {
        DWORD size = 0;
        SetupDiGetDeviceInterfaceDetailW(devices, &found, nullptr, 0, &size, nullptr);
        std::vector<char> room(size);
        auto *const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W *>(room.data());
        detail->cbSize = sizeof *detail;
        if (SetupDiGetDeviceInterfaceDetailW(devices, &found, detail, size, nullptr, nullptr))
            names.append(detail->DevicePath).push_back(L'\0');
    }
    SetupDiDestroyDeviceInfoList(devices);
    names.push_back(L'\0');
    return names;
}

using Callback = DWORD(CALLBACK *)(void *handle, void *context, DWORD action, void *data, DWORD size);

/// What CM_NOTIFY_FILTER begins with.
struct Filter {
    DWORD size;
    DWORD flags;
    DWORD type;
    DWORD reserved;
    GUID interfaceClass;
};

/// Wine tells a window, so there is a thread with one.
class Notification {
public:
    Notification(const GUID &interfaceClass, void *context, Callback callback)
        : m_class(interfaceClass)
        , m_context(context)
        , m_callback(callback)
        , m_ready(CreateEventW(nullptr, TRUE, FALSE, nullptr))
        , m_thread(CreateThread(nullptr, 0, &run, this, 0, &m_threadId))
    {
        WaitForSingleObject(m_ready, INFINITE);
    }
    ~Notification()
    {
        PostThreadMessageW(m_threadId, WM_QUIT, 0, 0);
        WaitForSingleObject(m_thread, INFINITE);
        CloseHandle(m_thread);
        CloseHandle(m_ready);
    }
    Notification(const Notification &) = delete;
    Notification &operator=(const Notification &) = delete;

private:
    static LRESULT CALLBACK take(HWND window, UINT message, WPARAM event, LPARAM data)
    {
        auto *const self = reinterpret_cast<Notification *>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (message == WM_DEVICECHANGE && (event == DBT_DEVICEARRIVAL || event == DBT_DEVICEREMOVECOMPLETE)) {
            self->m_callback(self, self->m_context, event == DBT_DEVICEARRIVAL ? kArrival : kRemoval, nullptr,
                             0);
            return TRUE;
        }
        return DefWindowProcW(window, message, event, data);
    }

    static DWORD WINAPI run(void *notification)
    {
        static_cast<Notification *>(notification)->loop();
        return 0;
    }

    void loop()
    {
        const HWND window
            = CreateWindowExW(0, L"Static", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&take));
        DEV_BROADCAST_DEVICEINTERFACE_W filter{};
        filter.dbcc_size = sizeof filter;
        filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
        filter.dbcc_classguid = m_class;
        const HDEVNOTIFY subscription
            = RegisterDeviceNotificationW(window, &filter, DEVICE_NOTIFY_WINDOW_HANDLE);
        SetEvent(m_ready);
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        UnregisterDeviceNotification(subscription);
        DestroyWindow(window);
    }

    GUID m_class;
    void *m_context;
    Callback m_callback;
    HANDLE m_ready;
    DWORD m_threadId = 0;
    HANDLE m_thread;
};

} // namespace

extern "C" {

__declspec(dllexport) DWORD WINAPI
    CM_Get_Device_Interface_List_SizeW(ULONG *size, GUID *interfaceClass, const wchar_t *, ULONG)
{
    *size = ULONG(interfaceNames(*interfaceClass).size());
    return kSuccess;
}

__declspec(dllexport) DWORD WINAPI
    CM_Get_Device_Interface_ListW(GUID *interfaceClass, const wchar_t *, wchar_t *buffer, ULONG size, ULONG)
{
    const std::wstring names = interfaceNames(*interfaceClass);
    if (names.size() > size)
        return kBufferSmall;
    std::wmemcpy(buffer, names.data(), names.size());
    return kSuccess;
}

__declspec(dllexport) DWORD WINAPI
    CM_Register_Notification(const Filter *filter, void *context, Callback callback, void **handle)
{
    if (filter->type != 0)
        return kFailure;
    *handle = new Notification(filter->interfaceClass, context, callback);
    return kSuccess;
}

__declspec(dllexport) DWORD WINAPI CM_Unregister_Notification(void *handle)
{
    delete static_cast<Notification *>(handle);
    return kSuccess;
}

} // extern "C"
