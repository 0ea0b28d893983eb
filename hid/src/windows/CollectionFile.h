// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "CollectionOrder.h"
#include "SystemHandle.h"

#include <HIDCommunicator/HidTransport.h>

#include <QString>

#include <optional>

namespace HIDCommunicator {

/// A top-level collection that is open for reports. Closed where it could not be had.
struct CollectionFile {
    SystemHandle handle;
    int inputSize = 0; ///< the longest report in either direction, its ID included
    int outputSize = 0;
};

/// The reports of the collection behind \a path, as it tells them itself; nothing when it does not. Works
/// also while other programs have it open, and reads and writes nothing.
std::optional<CollectionReports> reportsBehind(const QString &path);

/// Opens \a wanted, and asks the open collection itself whether it is the one: what is behind a name may have
/// changed since the system listed it. Closed when it cannot be opened, is another device's, or does not
/// carry the family's reports; one that does not tell is given the benefit of the doubt.
CollectionFile openCollection(const HidDeviceInfo &wanted);

} // namespace HIDCommunicator
