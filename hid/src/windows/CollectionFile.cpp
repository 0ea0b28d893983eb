// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "CollectionFile.h"

#include "ReportFraming.h"

#include <windows.h>

// MinGW's header leaves this to its user.
extern "C" {
#include <hidsdi.h>
}

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

namespace HIDCommunicator {

namespace {

/// As many unread reports as Linux keeps; the system's own habit is half of that.
constexpr ULONG kUnreadReports = 64;

struct FreePreparsed {
    void operator()(PHIDP_PREPARSED_DATA data) const { HidD_FreePreparsedData(data); }
};
using Preparsed = std::unique_ptr<_HIDP_PREPARSED_DATA, FreePreparsed>;

/// What a collection says of itself.
struct Description {
    Preparsed data;
    HIDP_CAPS capabilities{};
};

SystemHandle openFile(const QString &path, DWORD access, DWORD flags)
{
    return ownFile(CreateFileW(reinterpret_cast<const wchar_t *>(path.utf16()), access,
                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, flags, nullptr));
}

std::optional<Description> describe(HANDLE file)
{
    PHIDP_PREPARSED_DATA given = nullptr;
    if (!HidD_GetPreparsedData(file, &given))
        return std::nullopt;
    Description description{Preparsed(given)};
    if (HidP_GetCaps(given, &description.capabilities) != HIDP_STATUS_SUCCESS)
        return std::nullopt;
    return description;
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

CollectionReports reportsOf(const Description &description)
{
    const HIDP_CAPS &capabilities = description.capabilities;
    return {reportIds(description.data.get(), HidP_Input, capabilities.NumberInputValueCaps,
                      capabilities.NumberInputButtonCaps),
            reportIds(description.data.get(), HidP_Output, capabilities.NumberOutputValueCaps,
                      capabilities.NumberOutputButtonCaps)};
}

bool isDevice(HANDLE file, const HidDeviceInfo &wanted)
{
    HIDD_ATTRIBUTES attributes{};
    attributes.Size = sizeof attributes;
    return HidD_GetAttributes(file, &attributes) && attributes.VendorID == wanted.vendorId
        && attributes.ProductID == wanted.productId;
}

} // namespace

std::optional<CollectionReports> reportsBehind(const QString &path)
{
    const SystemHandle file = openFile(path, 0, 0);
    const auto description = file ? describe(file.get()) : std::nullopt;
    return description ? std::optional(reportsOf(*description)) : std::nullopt;
}

CollectionFile openCollection(const HidDeviceInfo &wanted)
{
    SystemHandle file = openFile(wanted.path, GENERIC_READ | GENERIC_WRITE, FILE_FLAG_OVERLAPPED);
    if (!file || !isDevice(file.get(), wanted))
        return {};
    const auto description = describe(file.get());
    if (!description)
        return {std::move(file), kOutputReportSize, kOutputReportSize};
    if (familyReports(reportsOf(*description)) == FamilyReports::No)
        return {};
    HidD_SetNumInputBuffers(file.get(), kUnreadReports);
    return {std::move(file), description->capabilities.InputReportByteLength,
            description->capabilities.OutputReportByteLength};
}

} // namespace HIDCommunicator
