// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Turns the four versions into a plan and says when it may change. Sets m_upgradePlan; clears
// m_postUpgradeWaiting and m_zeroVersionCount when the first versions after an upgrade have come in. Called
// by version reading and by the refresh.

#include "net/networking_class.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/VersionRules.h"
#include "system/Log.h"

#include <QPointer>

#include <tuple>

namespace QuillonFirmwareUpgrade {

int FirmwareUpgradeWidget::compareVersion(const QString &a, const QString &b) const
{
    return VersionRules::compare(a, b);
}

UpgradePlan FirmwareUpgradeWidget::decideUpgradePlan()
{
    const VersionRules::Versions versions{m_devicePcVersion, m_remotePcVersion, m_deviceOtgVersion,
                                          m_remoteOtgVersion};
    const UpgradePlan plan = VersionRules::choosePlan(versions);
    Q_EMIT upgradeDisplayMsg(VersionRules::displayVersion(versions), plan != UpgradePlan::None);
    return plan;
}

/// A receiver of the announcement may delete the panel.
FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::storeFreshPlan()
{
    const QPointer<FirmwareUpgradeWidget> alive(this);
    const UpgradePlan plan = decideUpgradePlan();
    if (!alive)
        return PanelIs::Gone;
    m_upgradePlan = plan;
    return PanelIs::Alive;
}

bool FirmwareUpgradeWidget::isTooOldForPanel() const
{
    return VersionRules::isTooOld(m_devicePcVersion) || VersionRules::isTooOld(m_deviceOtgVersion);
}

bool FirmwareUpgradeWidget::isUpgradePlanned() const
{
    return m_upgradePlan == UpgradePlan::PcOnly || m_upgradePlan == UpgradePlan::OtgOnly
        || m_upgradePlan == UpgradePlan::Both;
}

bool FirmwareUpgradeWidget::isOtgPhase() const
{
    return m_upgradePlan == UpgradePlan::OtgOnly
        || (m_upgradePlan == UpgradePlan::Both && pcUpgradeCompleted);
}

/// After a version read: the plan follows the versions once all are known, but never while a run is under
/// way. \a silent: the reply that brought a version came in the waiting period after an upgrade.
void FirmwareUpgradeWidget::takeFreshVersions(bool silent)
{
    const QString &failed = networking_class::failedQuery();
    if (m_remotePcVersion == failed || m_remoteOtgVersion == failed || m_devicePcVersion.isEmpty()
        || m_deviceOtgVersion.isEmpty())
        return;

    if (m_postUpgradeWaiting) {
        Log::panel() << "[VersionRead] 升级后等待期，跳过UI刷新"
                     << " PC:" << m_devicePcVersion << " OTG:" << m_deviceOtgVersion;
        m_postUpgradeWaiting = false;
        m_zeroVersionCount = 0;
        std::ignore = storeFreshPlan();
    } else if (m_isUpgrading) {
        Log::panel() << "[Upgrade] 升级进行中，保持当前升级计划: " << VersionRules::planLogName(m_upgradePlan)
                     << " PC版本:" << m_devicePcVersion << " OTG版本:" << m_deviceOtgVersion;
    } else if (silent) {
        std::ignore = storeFreshPlan();
    } else if (refreshPlanAndScreen() == PanelIs::Alive) {
        logPlan();
    }
}

void FirmwareUpgradeWidget::logPlan() const
{
    switch (m_upgradePlan) {
    case UpgradePlan::None:
        Log::panel() << "[Upgrade] 不需要升级";
        break;
    case UpgradePlan::PcOnly:
        Log::panel() << "[Upgrade] 需要升级 PC 固件。device=" << m_devicePcVersion
                     << "remote=" << m_remotePcVersion;
        break;
    case UpgradePlan::OtgOnly:
        Log::panel() << "[Upgrade] 需要升级 OTG 固件";
        break;
    case UpgradePlan::Both:
        Log::panel() << "[Upgrade] PC + OTG 都需要升级 （先升级PC再升级OTG）";
        break;
    }
}

FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::refreshPlanAndScreen()
{
    if (storeFreshPlan() == PanelIs::Gone)
        return PanelIs::Gone;
    const QPointer<FirmwareUpgradeWidget> alive(this);
    updateUIByUpgradeState();
    return alive ? PanelIs::Alive : PanelIs::Gone;
}

} // namespace QuillonFirmwareUpgrade
