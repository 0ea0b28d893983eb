#include "HidCollections.h"

#include "HidapiConnection.h"
#include "ReportFraming.h"

#include <hidapi/hidapi.h>

#include <windows.h>

// MinGW's header leaves this to its user.
extern "C" {
#include <hidsdi.h>
}

#include <algorithm>
#include <memory>
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

/// Whether \a ask, one of the system's two functions for capabilities, finds the family's report ID among
/// \a count fields.
template <typename Capability, typename Ask> bool anyFieldInFamilyReports(USHORT count, Ask ask)
{
    std::vector<Capability> fields(count);
    if (count == 0 || ask(fields.data(), &count) != HIDP_STATUS_SUCCESS)
        return false;
    return std::any_of(fields.begin(), fields.begin() + count,
                       [](const Capability &field) { return field.ReportID == UCHAR(kReportId); });
}

bool hasFamilyReports(PHIDP_PREPARSED_DATA data, HIDP_REPORT_TYPE type, USHORT values, USHORT buttons)
{
    return anyFieldInFamilyReports<HIDP_VALUE_CAPS>(values,
                                                    [&](HIDP_VALUE_CAPS *found, USHORT *count) {
                                                        return HidP_GetValueCaps(type, found, count, data);
                                                    })
        || anyFieldInFamilyReports<HIDP_BUTTON_CAPS>(buttons, [&](HIDP_BUTTON_CAPS *found, USHORT *count) {
               return HidP_GetButtonCaps(type, found, count, data);
           });
}

} // namespace

bool carriesFamilyReports(const QString &path)
{
    const File file = openForQuestions(path);
    PHIDP_PREPARSED_DATA given = nullptr;
    if (!file || !HidD_GetPreparsedData(file.get(), &given))
        return false;
    const Preparsed data(given);
    HIDP_CAPS capabilities{};
    if (HidP_GetCaps(data.get(), &capabilities) != HIDP_STATUS_SUCCESS)
        return false;
    return hasFamilyReports(data.get(), HidP_Output, capabilities.NumberOutputValueCaps,
                            capabilities.NumberOutputButtonCaps)
        && hasFamilyReports(data.get(), HidP_Input, capabilities.NumberInputValueCaps,
                            capabilities.NumberInputButtonCaps);
}

QList<HidDeviceInfo> listHidCollections(int vendorId)
{
    Enumeration first;
    {
        const std::lock_guard lock(hidapiMutex());
        first.reset(hid_enumerate(ushort(vendorId), 0));
    }
    QList<HidDeviceInfo> devices;
    for (const hid_device_info *device = first.get(); device; device = device->next) {
        // The system takes its paths in any spelling; the panel reads the identity out of lower case.
        devices.append({QString::fromUtf8(device->path).toLower(), device->vendor_id, device->product_id});
    }
    std::stable_partition(devices.begin(), devices.end(),
                          [](const HidDeviceInfo &device) { return !carriesFamilyReports(device.path); });
    return devices;
}

} // namespace HIDCommunicator
