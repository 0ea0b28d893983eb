// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "DeviceNotification.h"

#include "ConfigurationManager.h"
#include "HidInterfaceClass.h"

#include <windows.h>

#include <array>

namespace HIDCommunicator {

namespace {

DWORD CALLBACK takeNotification(NotificationHandle, void *changed, DWORD action, void *, DWORD)
{
    if (action == kInterfaceArrival || action == kInterfaceRemoval)
        SetEvent(static_cast<HANDLE>(changed));
    return ERROR_SUCCESS;
}

template <typename Function> Function resolve(HMODULE library, const char *name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(library, name)));
}

/// They are looked up: a system without them gives no notifications, and this library loads there all the
/// same.
NotificationFunctions systemFunctions()
{
    const HMODULE library = LoadLibraryW(L"cfgmgr32.dll"); // stays, for its functions are kept
    if (!library)
        return {};
    const NotificationFunctions functions{
        resolve<RegisterNotification>(library, "CM_Register_Notification"),
        resolve<UnregisterNotification>(library, "CM_Unregister_Notification")};
    return functions.subscribe && functions.unsubscribe ? functions : NotificationFunctions{};
}

} // namespace

/// The subscription, as long as it lives.
class DeviceNotification::Registration {
public:
    Registration(const NotificationFunctions &functions, HANDLE changed)
        : m_unsubscribe(functions.unsubscribe)
    {
        NotificationFilter filter;
        filter.of.interfaceClass = kHidInterfaceClass;
        if (!functions.subscribe
            || functions.subscribe(&filter, changed, &takeNotification, &m_handle) != ERROR_SUCCESS)
            m_handle = nullptr;
    }

    ~Registration()
    {
        if (m_handle)
            m_unsubscribe(m_handle);
    }

    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

private:
    UnregisterNotification m_unsubscribe;
    NotificationHandle m_handle = nullptr;
};

DeviceNotification::DeviceNotification()
    : DeviceNotification(systemFunctions())
{
}

DeviceNotification::DeviceNotification(const NotificationFunctions &functions)
    : m_changed(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    , m_interrupted(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    , m_registration(std::make_unique<Registration>(functions, m_changed))
{
}

DeviceNotification::~DeviceNotification()
{
    m_registration.reset();
    CloseHandle(m_interrupted);
    CloseHandle(m_changed);
}

bool DeviceNotification::wait(std::chrono::milliseconds timeout)
{
    const std::array<HANDLE, 2> events{m_interrupted, m_changed};
    const DWORD woken
        = WaitForMultipleObjects(DWORD(events.size()), events.data(), FALSE, DWORD(timeout.count()));
    return woken == WAIT_OBJECT_0 + 1;
}

void DeviceNotification::interrupt()
{
    SetEvent(m_interrupted);
}

} // namespace HIDCommunicator
