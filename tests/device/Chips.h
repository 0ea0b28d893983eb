// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"
#include "tests/support/DeviceReplies.h"

#include <QTest>

/// The two chips of the device, so that what holds for one is tested for the other.
namespace Chips {

using DeviceReplies::Version;

inline QString nameOf(Chip chip)
{
    return chip == Chip::Pc ? QStringLiteral("PC") : QStringLiteral("OTG");
}

/// The answer to a read of the chip's version.
inline QByteArray reply(Chip chip, Version version)
{
    return chip == Chip::Pc ? DeviceReplies::pcVersion(version) : DeviceReplies::otgVersion(version);
}

/// Where the server is asked for the chip's newest version.
inline QString versionPath(Chip chip, DeviceModel model)
{
    if (model == DeviceModel::R1)
        return chip == Chip::Pc ? ServerPaths::kR1PcVersion : ServerPaths::kR1OtgVersion;
    return chip == Chip::Pc ? ServerPaths::kR2PcVersion : ServerPaths::kR2OtgVersion;
}

inline QString deviceLine(Chip chip, const QString &version)
{
    return QStringLiteral("DEVICE %1 VERSION :  %2").arg(nameOf(chip), version);
}

inline QString remoteLine(Chip chip, const QString &version)
{
    return QStringLiteral("Remote %1 Firmware Version is:  %2").arg(nameOf(chip), version);
}

/// The lines of a log but for those of the bus scans, which come whenever the event loop turns.
inline QStringList withoutScans(QStringList lines)
{
    lines.removeIf([](const QString &line) {
        return line.startsWith(u"[ConnectingR2]") || line.startsWith(u"[FirmwareUpgradeWidget");
    });
    return lines;
}

/// Table rows: each chip as "chip", with the other one as "otherChip".
inline void addRows()
{
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<Chip>("otherChip");
    QTest::newRow("PC chip") << Chip::Pc << Chip::Otg;
    QTest::newRow("OTG chip") << Chip::Otg << Chip::Pc;
}

} // namespace Chips
