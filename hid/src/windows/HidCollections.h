// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "FamilyReports.h"

#include <HIDCommunicator/HidTransport.h>

#include <QList>
#include <QString>

namespace HIDCommunicator {

/// The attached top-level collections of \a vendorId, each under the system's own path, as
/// inOrderForThePanel() has them.
QList<HidDeviceInfo> listHidCollections(int vendorId);

/// Whether the collection behind \a path takes and gives reports with the family's ID. Unknown also when it
/// has left.
FamilyReports familyReports(const QString &path);

} // namespace HIDCommunicator
