#include "CollectionOrder.h"

#include "ReportFraming.h"

#include <algorithm>

namespace HIDCommunicator {

bool carriesFamilyReports(const CollectionReports &reports)
{
    return reports.input.contains(quint8(kReportId)) && reports.output.contains(quint8(kReportId));
}

QList<HidDeviceInfo> inOrderForThePanel(QList<HidCollection> collections)
{
    std::stable_partition(collections.begin(), collections.end(), [](const HidCollection &collection) {
        return !carriesFamilyReports(collection.reports);
    });
    QList<HidDeviceInfo> devices;
    for (const HidCollection &collection : std::as_const(collections)) {
        devices.append(collection.device);
        devices.last().path = collection.device.path.toLower();
    }
    return devices;
}

} // namespace HIDCommunicator
