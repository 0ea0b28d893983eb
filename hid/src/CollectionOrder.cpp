// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "CollectionOrder.h"

#include "ReportFraming.h"

namespace HIDCommunicator {

FamilyReports familyReports(const std::optional<CollectionReports> &reports)
{
    if (!reports)
        return FamilyReports::Unknown;
    const bool bothWays
        = reports->input.contains(quint8(kReportId)) && reports->output.contains(quint8(kReportId));
    return bothWays ? FamilyReports::Yes : FamilyReports::No;
}

QList<HidDeviceInfo> inOrderForThePanel(const QList<HidCollection> &collections)
{
    QList<HidDeviceInfo> devices;
    for (const auto answer : {FamilyReports::No, FamilyReports::Unknown, FamilyReports::Yes}) {
        for (const HidCollection &collection : collections) {
            if (familyReports(collection.reports) != answer)
                continue;
            devices.append(collection.device);
            devices.last().path = collection.device.path.toLower();
        }
    }
    return devices;
}

} // namespace HIDCommunicator
