// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/ReadyToUpgrade.h"

/// A run whose images are all but there: the PC image is marked, the OTG image lies on disk.
/// finishDownloads() starts the phase of the plan. Without a flashing tool beside the test, a start of the
/// tool ends with a log line.
struct PhaseStage : ReadyToUpgrade {
    explicit PhaseStage(UpgradePlan plan, DeviceModel model = DeviceModel::R2)
        : ReadyToUpgrade(model)
    {
        panel->pretendPlan(plan);
        panel->pretendUpgrading(true);
        panel->pretendImagePath(Chip::Pc, image(QStringLiteral("pc.bin")));
        panel->pretendImagePath(Chip::Otg, image(QStringLiteral("otg.bin")));
        writeFile(panel->imagePath(Chip::Pc), kPcImage);
        writeFile(panel->imagePath(Chip::Otg), kOtgImage);
        panel->pretendImage(Chip::Pc, true);
    }

    void finishDownloads() { panel->endDownload(); }

    /// One line per start of the flashing tool, up to the product ID: "startUpgradeWithExternalTool pid= 1f".
    QStringList toolStarts() const
    {
        QStringList starts;
        for (const QString &line : log.startingWith(QStringLiteral("startUpgradeWithExternalTool")))
            starts.append(line.section(u' ', 0, 2));
        return starts;
    }

    int receiversOfOtgConnected() const { return OpenPanel::receiversOf(*panel, SIGNAL(r2otgConnected())); }
};

namespace ToolStarts {
inline const QString kR1PcNormal = QStringLiteral("startUpgradeWithExternalTool pid= 1");
inline const QString kR1PcBootLoader = QStringLiteral("startUpgradeWithExternalTool pid= 10");
inline const QString kR2PcNormal = QStringLiteral("startUpgradeWithExternalTool pid= e");
inline const QString kR2PcBootLoader = QStringLiteral("startUpgradeWithExternalTool pid= ff");
inline const QString kR1Otg = QStringLiteral("startUpgradeWithExternalTool pid= 12");
inline const QString kR2OtgNormal = QStringLiteral("startUpgradeWithExternalTool pid= 1f");
inline const QString kR2OtgBootLoader = QStringLiteral("startUpgradeWithExternalTool pid= 65");
} // namespace ToolStarts
