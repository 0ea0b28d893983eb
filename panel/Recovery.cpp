// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Recovers a device that is stuck in its boot loader, and refreshes the device's versions with a bounded
// number of attempts. startAutoRecoverUpgrade() sets m_upgradePlan to Both; the flags of the run are set by
// discovery before it is called and by the sequence after. Called by discovery through
// onDeviceBrickedDetected, and by a host.

#include "panel/Colours.h"
#include "panel/Delays.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/VersionRules.h"
#include "panel/Visibility.h"
#include "system/Log.h"

#include <QLabel>
#include <QPointer>

#include <tuple>

using namespace std::chrono_literals;

namespace QuillonFirmwareUpgrade {

namespace {
constexpr auto kRefreshInterval = 500ms;
}

void FirmwareUpgradeWidget::startAutoRecoverUpgrade()
{
    show();
    raise();
    activateWindow();
    Log::panel() << "[AutoRecover] start auto recover upgrade flow.";
    m_upgradePlan = UpgradePlan::Both;
    if (m_remotePcVersion.isEmpty()) {
        if (queryServer(pcVersionUrl(), &FirmwareUpgradeWidget::m_remotePcVersion) == PanelIs::Gone)
            return;
        Log::panel() << "[AutoRecover] fetch remote PC firmware version:" << m_remotePcVersion;
    }
    const QPointer<FirmwareUpgradeWidget> alive(this);
    updateUIByUpgradeState();
    if (!alive)
        return;
    m_progressBar->setValue(0);

    if (m_inFailureRetry) {
        showRetryOffer();
        return;
    }
    m_progressBar->setBackgroundColor(Colours::kBarIdle);
    hideAll({m_rocketLb, m_upgradeTextLb});
    m_progressBar->setClickable(false);
    startDownloadAndUpgrade();
}

void FirmwareUpgradeWidget::requestVersionRefreshWithRetry(int retriesLeft)
{
    if (retriesLeft < 1) {
        Log::panel() << "[Refresh] version refresh retries exhausted";
        std::ignore = refreshPlanAndScreen();
        return;
    }
    if (!m_hidManager)
        return;
    queryDeviceMode();
    runAfter(kRefreshInterval, this, [this, retriesLeft] { judgeVersionRefresh(retriesLeft); });
}

void FirmwareUpgradeWidget::judgeVersionRefresh(int retriesLeft)
{
    if (VersionRules::isUpToDate(m_devicePcVersion, m_remotePcVersion)
        && VersionRules::isUpToDate(m_deviceOtgVersion, m_remoteOtgVersion)) {
        Log::panel() << "[Refresh] versions are up-to-date, refresh UI";
        std::ignore = refreshPlanAndScreen();
        return;
    }
    Log::panel() << "[Refresh] not ready yet, retry left:" << retriesLeft - 1 << "pc=" << m_devicePcVersion
                 << "/" << m_remotePcVersion << "otg=" << m_deviceOtgVersion << "/" << m_remoteOtgVersion;
    requestVersionRefreshWithRetry(retriesLeft - 1);
}

} // namespace QuillonFirmwareUpgrade
