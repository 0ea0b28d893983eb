#pragma once

#include "tests/panel/ReadyToUpgrade.h"

/// A run whose images are all but there: the PC image is marked, the OTG image lies on disk.
/// finishDownloads() starts the phase of the plan. Without a flashing tool beside the test, a start of the
/// tool ends with a log line.
struct PhaseStage : ReadyToUpgrade {
    explicit PhaseStage(UpgradePlan plan, DeviceModel model = DeviceModel::R2)
        : ReadyToUpgrade(model)
    {
        panel->m_upgradePlan = plan;
        panel->m_isUpgrading = true;
        panel->m_pcFirmwarePath = image(QStringLiteral("pc.bin"));
        panel->m_otgFirmwarePath = image(QStringLiteral("otg.bin"));
        writeFile(panel->m_pcFirmwarePath, kPcImage);
        writeFile(panel->m_otgFirmwarePath, kOtgImage);
        panel->m_pcFirmwareDownloaded = true;
    }

    void finishDownloads() { panel->onFirmwareDownloaded(); }

    /// One line per start of the flashing tool, up to the product ID: "startUpgradeWithExternalTool pid=1f".
    QStringList toolStarts() const
    {
        QStringList starts;
        for (const QString &line : log.startingWith(QStringLiteral("startUpgradeWithExternalTool")))
            starts.append(line.section(u' ', 0, 1));
        return starts;
    }

    int receiversOfOtgConnected() const { return panel->receivers(SIGNAL(r2otgConnected())); }
};

namespace ToolStarts {
inline const QString kR1PcNormal = QStringLiteral("startUpgradeWithExternalTool pid=1");
inline const QString kR1PcBootLoader = QStringLiteral("startUpgradeWithExternalTool pid=10");
inline const QString kR2PcNormal = QStringLiteral("startUpgradeWithExternalTool pid=e");
inline const QString kR2PcBootLoader = QStringLiteral("startUpgradeWithExternalTool pid=ff");
inline const QString kR1Otg = QStringLiteral("startUpgradeWithExternalTool pid=12");
inline const QString kR2OtgNormal = QStringLiteral("startUpgradeWithExternalTool pid=1f");
inline const QString kR2OtgBootLoader = QStringLiteral("startUpgradeWithExternalTool pid=65");
} // namespace ToolStarts
