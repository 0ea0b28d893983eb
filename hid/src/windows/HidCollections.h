#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <QList>
#include <QString>

namespace HIDCommunicator {

/// The attached top-level collections of \a vendorId, each under the system's own path in lower case. A
/// device with several collections has one path for each; those that carry the family's reports come last,
/// where the panel looks first.
QList<HidDeviceInfo> listHidCollections(int vendorId);

/// Whether the collection behind \a path takes and gives reports with the family's ID. False when it has
/// left.
bool carriesFamilyReports(const QString &path);

} // namespace HIDCommunicator
