// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "CollectionOrder.h"

#include "ReportFraming.h"

#include <algorithm>

namespace HIDCommunicator {

FamilyReports familyReports(const std::optional<CollectionReports> &reports)
{
    if (!reports)
        return FamilyReports::Unknown;
    const bool bothWays
        = reports->input.contains(quint8(kReportId)) && reports->output.contains(quint8(kReportId));
    return bothWays ? FamilyReports::Yes : FamilyReports::No;
}

QList<HidDeviceInfo> inOrderForThePanel(QList<HidCollection> collections)
{
    std::stable_sort(collections.begin(), collections.end(),
                     [](const HidCollection &left, const HidCollection &right) {
                         return familyReports(left.reports) < familyReports(right.reports);
                     });
    QList<HidDeviceInfo> devices;
    for (const HidCollection &collection : std::as_const(collections)) {
        devices.append(collection.device);
        devices.last().path = collection.device.path.toLower();
    }
    return devices;
}

} // namespace HIDCommunicator
