// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "HidCollections.h"

#include "CollectionOrder.h"
#include "HidapiConnection.h"

#include <hidapi/hidapi.h>

#include <windows.h>

// MinGW's header leaves this to its user.
extern "C" {
#include <hidsdi.h>
}

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace HIDCommunicator {

namespace {

struct CloseFile {
    void operator()(void *file) const { CloseHandle(file); }
};
using File = std::unique_ptr<void, CloseFile>;

struct FreePreparsed {
    void operator()(PHIDP_PREPARSED_DATA data) const { HidD_FreePreparsedData(data); }
};
using Preparsed = std::unique_ptr<_HIDP_PREPARSED_DATA, FreePreparsed>;

struct FreeEnumeration {
    void operator()(hid_device_info *first) const
    {
        const std::lock_guard lock(hidapiMutex());
        hid_free_enumeration(first);
    }
};
using Enumeration = std::unique_ptr<hid_device_info, FreeEnumeration>;

/// Opens a collection to ask about it, which works while another program has it open, too.
File openForQuestions(const QString &path)
{
    const HANDLE file = CreateFileW(reinterpret_cast<const wchar_t *>(path.utf16()), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

/// Adds the report IDs of \a count fields, which \a ask, one of the system's functions for capabilities,
/// describes.
template <typename Capability, typename Ask> void addReportIds(QList<quint8> &ids, USHORT count, Ask ask)
{
    std::vector<Capability> fields(count);
    if (count == 0 || ask(fields.data(), &count) != HIDP_STATUS_SUCCESS)
        return;
    std::transform(fields.begin(), fields.begin() + count, std::back_inserter(ids),
                   [](const Capability &field) { return field.ReportID; });
}

QList<quint8> reportIds(PHIDP_PREPARSED_DATA data, HIDP_REPORT_TYPE type, USHORT values, USHORT buttons)
{
    QList<quint8> ids;
    addReportIds<HIDP_VALUE_CAPS>(ids, values, [&](HIDP_VALUE_CAPS *found, USHORT *count) {
        return HidP_GetValueCaps(type, found, count, data);
    });
    addReportIds<HIDP_BUTTON_CAPS>(ids, buttons, [&](HIDP_BUTTON_CAPS *found, USHORT *count) {
        return HidP_GetButtonCaps(type, found, count, data);
    });
    return ids;
}

std::optional<CollectionReports> reportsBehind(const QString &path)
{
    const File file = openForQuestions(path);
    PHIDP_PREPARSED_DATA given = nullptr;
    if (!file || !HidD_GetPreparsedData(file.get(), &given))
        return std::nullopt;
    const Preparsed data(given);
    HIDP_CAPS capabilities{};
    if (HidP_GetCaps(data.get(), &capabilities) != HIDP_STATUS_SUCCESS)
        return std::nullopt;
    return CollectionReports{reportIds(data.get(), HidP_Input, capabilities.NumberInputValueCaps,
                                       capabilities.NumberInputButtonCaps),
                             reportIds(data.get(), HidP_Output, capabilities.NumberOutputValueCaps,
                                       capabilities.NumberOutputButtonCaps)};
}

} // namespace

FamilyReports familyReports(const QString &path)
{
    return familyReports(reportsBehind(path));
}

QList<HidDeviceInfo> listHidCollections(int vendorId)
{
    Enumeration first;
    {
        const std::lock_guard lock(hidapiMutex());
        first.reset(hid_enumerate(ushort(vendorId), 0));
    }
    QList<HidCollection> collections;
    for (const hid_device_info *device = first.get(); device; device = device->next) {
        const QString path = QString::fromUtf8(device->path);
        collections.append({{path, device->vendor_id, device->product_id}, reportsBehind(path)});
    }
    return inOrderForThePanel(std::move(collections));
}

} // namespace HIDCommunicator
