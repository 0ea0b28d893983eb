// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "InterfaceList.h"

#include "HidInterfaceClass.h"

#include <windows.h>

// Wants windows.h before it.
#include <cfgmgr32.h>

#include <QString>

#include <vector>

namespace HIDCommunicator {

namespace {

/// One after the other, each with a zero behind it, and one more zero at the end.
QStringList split(const std::vector<wchar_t> &names)
{
    QStringList result;
    for (const wchar_t *name = names.data(); *name; name += wcslen(name) + 1)
        result.append(QString::fromWCharArray(name));
    return result;
}

} // namespace

std::optional<QStringList> hidInterfaces()
{
    GUID interfaceClass = kHidInterfaceClass;
    std::vector<wchar_t> names;
    for (;;) {
        ULONG size = 0;
        if (CM_Get_Device_Interface_List_SizeW(&size, &interfaceClass, nullptr,
                                               CM_GET_DEVICE_INTERFACE_LIST_PRESENT)
            != CR_SUCCESS)
            return std::nullopt;
        names.assign(size + 1, L'\0');
        switch (CM_Get_Device_Interface_ListW(&interfaceClass, nullptr, names.data(), size,
                                              CM_GET_DEVICE_INTERFACE_LIST_PRESENT)) {
        case CR_SUCCESS:
            return split(names);
        case CR_BUFFER_SMALL: // one more has come in between
            break;
        default:
            return std::nullopt;
        }
    }
}

} // namespace HIDCommunicator
