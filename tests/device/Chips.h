#pragma once

#include "tests/panel/PanelStage.h"
#include "tests/support/DeviceReplies.h"

#include <QTest>

/// The two chips of the device, so that what holds for one is tested for the other.
namespace Chips {

using DeviceReplies::Version;

/// A chip and all that is named after it.
struct Chip {
    QByteArray (*reply)(Version);
    QString FirmwareUpgradeWidget::*device;
    QString FirmwareUpgradeWidget::*remote;
    QString name;
    QString r1Path;
    QString r2Path;
};

inline const Chip kPc{&DeviceReplies::pcVersion,
                      &FirmwareUpgradeWidget::m_devicePcVersion,
                      &FirmwareUpgradeWidget::m_remotePcVersion,
                      QStringLiteral("PC"),
                      ServerPaths::kR1PcVersion,
                      ServerPaths::kR2PcVersion};
inline const Chip kOtg{&DeviceReplies::otgVersion,
                       &FirmwareUpgradeWidget::m_deviceOtgVersion,
                       &FirmwareUpgradeWidget::m_remoteOtgVersion,
                       QStringLiteral("OTG"),
                       ServerPaths::kR1OtgVersion,
                       ServerPaths::kR2OtgVersion};

inline QString deviceLine(const Chip &chip, const QString &version)
{
    return QStringLiteral("DEVICE %1 VERSION : %2").arg(chip.name, version);
}

inline QString remoteLine(const Chip &chip, const QString &version)
{
    return QStringLiteral("Remote %1 Firmware Version is: %2").arg(chip.name, version);
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
    QTest::newRow("PC chip") << kPc << kOtg;
    QTest::newRow("OTG chip") << kOtg << kPc;
}

} // namespace Chips
