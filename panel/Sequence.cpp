// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Carries a run from the click to the start of the flashing tool, and from one chip to the next.
// Sets m_isUpgrading and the download flags, clears pcUpgradeCompleted when a run starts and sets it when its
// PC half is done; completing a run clears m_isUpgrading and m_autoRecoverRunning and sets
// m_postUpgradeWaiting. Called by the bar's click, by the recovery, by the end of each download and by the
// progress monitor.

#include "device/ModelTable.h"
#include "flash/ProgressScale.h"
#include "net/networking_class.h"
#include "panel/Colours.h"
#include "panel/Delays.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/ForeignText.h"
#include "panel/Visibility.h"
#include "system/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMovie>
#include <QPointer>

#include <tuple>

using namespace std::chrono_literals;

namespace QuillonFirmwareUpgrade {

namespace {
/// A device that was just flashed restarts before it can tell its new versions.
constexpr auto kReadBackDelay = 2400ms;

/// A connection that is over as soon as the signal is emitted: a second emission that comes before the event
/// loop has turned must not start the flashing tool twice.
const auto kOnceQueued = Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection);

QString downloadFolder()
{
    return qEnvironmentVariable("ALLUSERSPROFILE") + QStringLiteral("/Orvik/Orvik Link")
        + QStringLiteral("/orvikExe");
}

bool holdsData(const QString &path)
{
    return !path.isEmpty() && QFileInfo(path).size() > 0;
}
} // namespace

void FirmwareUpgradeWidget::onUpgradeClicked()
{
    Log::panel() << "clicked upgrade process, start upgrade...";
    if (m_progressBar) {
        m_progressBar->setClickable(false);
        hideAll({m_failIconLb, m_failTextLb});
        m_progressBar->clearBorder();
    }
    const bool otgHalfFailed = isOtgPhase();
    m_autoRecoverRunning = m_inFailureRetry = false;
    lastDetectedOtgPid = 0;
    resetStallDetector();
    if (otgHalfFailed)
        m_upgradePlan = UpgradePlan::OtgOnly;
    startDownloadAndUpgrade();
}

void FirmwareUpgradeWidget::startDownloadAndUpgrade()
{
    if (m_progressBar)
        m_progressBar->setProgressColor(Colours::kProgress);
    m_isUpgrading = true;
    m_pcFirmwareDownloaded = m_otgFirmwareDownloaded = pcUpgradeCompleted = false;
    m_downloadRetryCount = 0;
    if (fetchRemoteVersions() == PanelIs::Gone)
        return;
    prepareDownloads();
    connect(networking_class::getInstance(), &networking_class::network_finish_download, this,
            &FirmwareUpgradeWidget::onFirmwareDownloaded, Qt::UniqueConnection);
    networking_class::getInstance()->downloadFile(QUrl(m_pcDownloadUrl), m_pcFirmwarePath);
}

/// Blocks for at most two server queries.
FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::fetchRemoteVersions()
{
    if (!m_remotePcVersion.isEmpty() && !m_remoteOtgVersion.isEmpty())
        return PanelIs::Alive;
    if (queryServer(pcVersionUrl(), &FirmwareUpgradeWidget::m_remotePcVersion) == PanelIs::Gone)
        return PanelIs::Gone;
    Log::panel() << "[Upgrade] fetch remote PC firmware version:" << m_remotePcVersion;
    if (queryServer(otgVersionUrl(), &FirmwareUpgradeWidget::m_remoteOtgVersion) == PanelIs::Gone)
        return PanelIs::Gone;
    Log::panel() << "[Upgrade] fetch remote OTG firmware version:" << m_remoteOtgVersion;
    return PanelIs::Alive;
}

void FirmwareUpgradeWidget::prepareDownloads()
{
    const QString folder = downloadFolder();
    QDir().mkpath(folder);
    const auto imagePath = [&](QLatin1String chip, const QString &version) -> QString {
        return folder + u'/' + firmwareFilePrefix() + chip + ForeignText::inFileName(version)
            + QStringLiteral(".bin");
    };
    m_pcDownloadUrl = pcFirmwareDownloadUrl();
    m_pcFirmwarePath = imagePath(QLatin1String("_PC"), m_remotePcVersion);
    m_otgDownloadUrl = otgFirmwareDownloadUrl();
    m_otgFirmwarePath = imagePath(QLatin1String("_OTG"), m_remoteOtgVersion);
    // A stale image must never be flashed.
    for (const QString &path : {m_pcFirmwarePath, m_otgFirmwarePath})
        QFile::remove(path);
}

void FirmwareUpgradeWidget::onFirmwareDownloaded()
{
    Log::panel() << "========####enter onFirmwareDownloaded";
    if (!m_pcFirmwareDownloaded && holdsData(m_pcFirmwarePath)) {
        m_pcFirmwareDownloaded = true;
        Log::panel() << "PC firmware download well, this path is: " << m_pcFirmwarePath;
        Log::panel() << "Starting OTG firmware download...";
        networking_class::getInstance()->downloadFile(QUrl(m_otgDownloadUrl), m_otgFirmwarePath);
        return;
    }
    if (!m_otgFirmwareDownloaded && holdsData(m_otgFirmwarePath)) {
        m_otgFirmwareDownloaded = true;
        Log::panel() << "OTG firmware download well, this path is: " << m_otgFirmwarePath;
    }
    if (!m_pcFirmwareDownloaded || !m_otgFirmwareDownloaded) {
        Log::panel() << "waitting for all firmware download well.";
        return;
    }
    disconnect(networking_class::getInstance(), &networking_class::network_finish_download, this,
               &FirmwareUpgradeWidget::onFirmwareDownloaded);
    Log::panel() << "all firmware has downlaod well, start upgrade...";
    startPhaseOfPlan();
}

void FirmwareUpgradeWidget::startPhaseOfPlan()
{
    switch (m_upgradePlan) {
    case UpgradePlan::None:
        Log::panel() << "[Upgrade] 当前无需升级";
        break;
    case UpgradePlan::PcOnly:
        startPcPhase();
        break;
    case UpgradePlan::OtgOnly:
        startOtgPhase();
        break;
    case UpgradePlan::Both:
        startBothPhases();
        break;
    }
}

void FirmwareUpgradeWidget::startPcPhase()
{
    Log::panel() << "[Upgrade] 开始执行 PC 固件升级流程";
    showWaitingScreen(Port::Pc);
    if (m_progressBar)
        m_progressBar->setValue(0);
    runAfter(rowOf(m_deviceModel).pc.flashDelay, this, [this] { startPcFlashing(); });
}

void FirmwareUpgradeWidget::startOtgPhase()
{
    Log::panel() << "[Upgrade] 开始执行 OTG 固件升级流程";
    showWaitingScreen(Port::Otg);
    connect(
        this, &FirmwareUpgradeWidget::r2otgConnected, this, [this] { startOtgFlashingAtOnce(); },
        kOnceQueued);
    std::ignore = rescan();
}

void FirmwareUpgradeWidget::startBothPhases()
{
    Log::panel() << "[Upgrade] 先升 PC 再升 OTG";
    disconnect(this, &FirmwareUpgradeWidget::r2otgConnected, nullptr, nullptr);
    connect(
        this, &FirmwareUpgradeWidget::r2otgConnected, this, [this] { scheduleOtgFlashing(); }, kOnceQueued);
    showWaitingScreen(Port::Pc);
    runAfter(rowOf(m_deviceModel).pc.flashDelay, this, [this] { startPcFlashing(); });
    std::ignore = rescan();
}

void FirmwareUpgradeWidget::startPcFlashing()
{
    hideConnectionHint();
    showCardAndNotes(true);
    if (rescan() == PanelIs::Alive)
        startUpgradeWithExternalTool(m_pcFirmwarePath, resolvePcTargetPid());
}

void FirmwareUpgradeWidget::scheduleOtgFlashing()
{
    disconnect(this, &FirmwareUpgradeWidget::r2otgConnected, nullptr, nullptr);
    Log::panel() << "[OTG] OTG设备已就绪，延迟后启动OTG升级";
    runAfter(rowOf(m_deviceModel).otg.flashDelay, this, [this] { startOtgFlashingIfStillWanted(); });
}

void FirmwareUpgradeWidget::startOtgFlashingIfStillWanted()
{
    if (!m_isUpgrading || !pcUpgradeCompleted)
        return;
    Log::panel() << "Detect the OTG connected to R2, start upgrade OTG firmware...";
    startUpgradeWithExternalTool(m_otgFirmwarePath, resolveOtgTargetPid());
}

void FirmwareUpgradeWidget::startOtgFlashingAtOnce()
{
    disconnect(this, &FirmwareUpgradeWidget::r2otgConnected, nullptr, nullptr);
    Log::panel() << "Detect the OTG connected to R2, start upgrade otg firmware...";
    hideConnectionHint();
    showCardAndNotes(true);
    startUpgradeWithExternalTool(m_otgFirmwarePath, resolveOtgTargetPid());
}

/// The PC half of a run over both chips is flashed; discovery takes over until the OTG interface is there.
/// It may be there already, and a receiver of that announcement may delete the panel.
FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::handOverToOtg()
{
    pcUpgradeCompleted = true;
    Log::panel() << "PC upgrade completed, waiting for OTG device...";
    showProgress(ProgressScale::kPcHalfDone);
    if (m_progressBar)
        m_progressBar->setProgressColor(Colours::kProgressWaitingForOtg);
    showWaitingScreen(Port::Otg);
    return rescan();
}

void FirmwareUpgradeWidget::completeUpgrade()
{
    m_autoRecoverRunning = false;
    lastDetectedOtgPid = 0;
    m_isUpgrading = false;
    Log::panel() << "[VersionRead] 清空版本号，准备重新读取";
    m_devicePcVersion.clear();
    m_deviceOtgVersion.clear();
    m_postUpgradeWaiting = true;
    m_zeroVersionCount = 0;
    if (!m_progressBar)
        return;
    showProgress(ProgressScale::kAllDone);
    hideConnectionHint();
    m_progressBar->setProgressColor(Colours::kProgress);
    hideAll({m_waitingIconLb, m_upgradingLb});
    showAll({m_doneIconLb, m_doneLb});
    upgradeProgDisPlay->hide();
    runAfter(kReadBackDelay, this, [this] {
        if (m_hidManager && rescan() == PanelIs::Alive)
            queryDeviceMode();
    });
}

} // namespace QuillonFirmwareUpgrade
