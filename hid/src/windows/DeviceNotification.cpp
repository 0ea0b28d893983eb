#include "DeviceNotification.h"

#include "ConfigurationManager.h"

// The class of HID device interfaces is defined here, not in a library.
#include <initguid.h>

#include <hidclass.h>

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

} // namespace

/// The subscription, as long as it lives. Its functions are looked up: a system without them gives no
/// notifications, and the library loads there all the same.
class DeviceNotification::Registration {
public:
    explicit Registration(HANDLE changed)
        : m_library(LoadLibraryW(L"cfgmgr32.dll"))
    {
        if (!m_library)
            return;
        const auto subscribe = resolve<RegisterNotification>(m_library, "CM_Register_Notification");
        m_unsubscribe = resolve<UnregisterNotification>(m_library, "CM_Unregister_Notification");
        if (!subscribe || !m_unsubscribe)
            return;
        NotificationFilter filter;
        filter.of.interfaceClass = GUID_DEVINTERFACE_HID;
        if (subscribe(&filter, changed, &takeNotification, &m_handle) != ERROR_SUCCESS)
            m_handle = nullptr;
    }

    /// Returns when no notification is being delivered any more.
    ~Registration()
    {
        if (m_handle)
            m_unsubscribe(m_handle);
        if (m_library)
            FreeLibrary(m_library);
    }

    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

private:
    HMODULE m_library;
    UnregisterNotification m_unsubscribe = nullptr;
    NotificationHandle m_handle = nullptr;
};

DeviceNotification::DeviceNotification()
    : m_changed(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    , m_interrupted(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    , m_registration(std::make_unique<Registration>(m_changed))
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
