// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Members of the panel (panel/FirmwareUpgradeWidget.h).
// What depends on the model that the panel serves: product IDs, server addresses, the prefix of image files.
// The rest of the panel asks these functions and holds no such number of its own. Reads m_deviceModel and,
// for the product ID that the flashing tool is to find, what discovery last saw.

#include "device/ModelTable.h"
#include "net/UpdateServer.h"
#include "panel/FirmwareUpgradeWidget.h"

namespace QuillonFirmwareUpgrade {

int FirmwareUpgradeWidget::pcNormalPid() const
{
    return rowOf(m_deviceModel).pc.normalPid;
}

int FirmwareUpgradeWidget::pcDfuPid() const
{
    return rowOf(m_deviceModel).pc.dfuPid;
}

int FirmwareUpgradeWidget::otgNormalPid() const
{
    return rowOf(m_deviceModel).otg.normalPid;
}

int FirmwareUpgradeWidget::otgDfuPid() const
{
    return rowOf(m_deviceModel).otg.dfuPid;
}

bool FirmwareUpgradeWidget::isDfuPid(int pid) const
{
    return pid == pcDfuPid() || pid == otgDfuPid();
}

int FirmwareUpgradeWidget::resolvePcTargetPid() const
{
    if (lastDetectedPcPid != 0)
        return lastDetectedPcPid;
    return m_autoRecoverRunning ? pcDfuPid() : pcNormalPid();
}

int FirmwareUpgradeWidget::resolveOtgTargetPid() const
{
    return lastDetectedOtgPid != 0 ? lastDetectedOtgPid : otgNormalPid();
}

QString FirmwareUpgradeWidget::pcVersionUrl() const
{
    return updateServerAddress() + rowOf(m_deviceModel).pc.versionPath;
}

QString FirmwareUpgradeWidget::otgVersionUrl() const
{
    return updateServerAddress() + rowOf(m_deviceModel).otg.versionPath;
}

QString FirmwareUpgradeWidget::pcFirmwareDownloadUrl() const
{
    return updateServerAddress() + rowOf(m_deviceModel).pc.imagePath;
}

QString FirmwareUpgradeWidget::otgFirmwareDownloadUrl() const
{
    return updateServerAddress() + rowOf(m_deviceModel).otg.imagePath;
}

QString FirmwareUpgradeWidget::firmwareFilePrefix() const
{
    return rowOf(m_deviceModel).code;
}

} // namespace QuillonFirmwareUpgrade
