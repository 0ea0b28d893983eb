// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// Reads the reports that come from the device, report ID already removed. Nothing here trusts a length that
/// the device states: what a report does not hold is not read. The start mark and the checksum are not looked
/// at.
namespace Report {

struct RegisterValue {
    quint16 address;
    quint16 value;
};

struct VersionReply {
    quint16 start; ///< address of the first register
    QString version; ///< "major.minor.patch", each a signed 16-bit number; empty when the report is too short
                     ///< for it
};

/// The operation code; none when \a report is too short to have an operation and a payload.
std::optional<quint8> operation(const QByteArray &report);

/// True for the replies that the device marks as not to be looked at.
bool isDropped(const QByteArray &report);

/// The entries of a random-read reply that are stated and present.
QList<RegisterValue> randomReadEntries(const QByteArray &report);

/// A continuous-read reply of three version registers; none when not even its start address is there.
std::optional<VersionReply> versionReply(const QByteArray &report);

/// The size and the first 25 bytes as the log shows them; none for a report that is not worth a line.
std::optional<QString> logText(const QByteArray &report);

} // namespace Report
