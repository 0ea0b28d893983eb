// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <windows.h>

namespace HIDCommunicator {

// The part of the configuration manager's interface that tells of arriving and leaving device interfaces.
// Windows 8 brought it; MinGW's headers do not have it.

using NotificationHandle = void *;

constexpr DWORD kFilterByDeviceInterface = 0; ///< CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE
constexpr DWORD kInterfaceArrival = 0; ///< CM_NOTIFY_ACTION_DEVICEINTERFACEARRIVAL
constexpr DWORD kInterfaceRemoval = 1; ///< CM_NOTIFY_ACTION_DEVICEINTERFACEREMOVAL

/// CM_NOTIFY_FILTER. The longest member of its union is an instance ID of 200 characters.
struct NotificationFilter {
    DWORD size = sizeof(NotificationFilter);
    DWORD flags = 0;
    DWORD type = kFilterByDeviceInterface;
    DWORD reserved = 0;
    union {
        GUID interfaceClass;
        WCHAR instanceId[200];
    } of{};
};
static_assert(sizeof(NotificationFilter) == 416, "the system checks the size");

using NotificationCallback = DWORD(CALLBACK *)(NotificationHandle handle, void *context, DWORD action,
                                               void *eventData, DWORD eventDataSize);
using RegisterNotification = DWORD(WINAPI *)(NotificationFilter *filter, void *context,
                                             NotificationCallback callback, NotificationHandle *handle);
using UnregisterNotification = DWORD(WINAPI *)(NotificationHandle handle);

/// Both null where the system has no notifications.
struct NotificationFunctions {
    RegisterNotification subscribe = nullptr;
    /// Returns when no notification is being delivered any more.
    UnregisterNotification unsubscribe = nullptr;
};

} // namespace HIDCommunicator
