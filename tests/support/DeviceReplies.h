// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>

#include <functional>

/// The reports of a device as the panel receives them: 64 bytes, report ID removed, checksum right. For a bus
/// that wants the report ID in front there is withId().
namespace DeviceReplies {

struct Version {
    quint16 major;
    quint16 minor;
    quint16 patch;
};

/// Any report of this operation and these 16-bit words behind it.
QByteArray reply(quint8 operation, const QList<quint16> &words);
/// The answer to the mode query.
QByteArray mode(quint16 flag);
/// The answer to a read of three registers from \a start on.
QByteArray version(quint16 start, Version version);
QByteArray pcVersion(Version version);
QByteArray otgVersion(Version version);

QByteArray withId(const QByteArray &reply);

/// A device in normal mode that answers the mode query and both version reads; for
/// ScriptedBus::setResponder().
std::function<QList<QByteArray>(const QByteArray &report)> device(Version pc, Version otg);

} // namespace DeviceReplies
