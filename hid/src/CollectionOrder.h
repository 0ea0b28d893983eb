// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "FamilyReports.h"

#include <HIDCommunicator/HidTransport.h>

#include <QList>

#include <optional>

namespace HIDCommunicator {

/// The report IDs that a top-level collection declares, in any order, repeated or not.
struct CollectionReports {
    QList<quint8> input;
    QList<quint8> output;
};

/// Windows gives each top-level collection of a device a path of its own.
struct HidCollection {
    HidDeviceInfo device; ///< its path in the system's spelling
    std::optional<CollectionReports> reports; ///< nothing where the system did not answer
};

/// Whether a collection both takes and gives reports with the family's ID.
FamilyReports familyReports(const std::optional<CollectionReports> &reports);

/// All of \a collections, paths in lower case, out of which the panel reads the identity: the system takes
/// any spelling. Those that carry the family's reports come last, where the panel looks first, and before
/// them those that did not tell; apart from that the order stays, so that of two equal devices it is always
/// the same one.
QList<HidDeviceInfo> inOrderForThePanel(const QList<HidCollection> &collections);

} // namespace HIDCommunicator
