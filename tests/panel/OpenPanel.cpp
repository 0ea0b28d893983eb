// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiled without access control, so that no test has to be.
#include "tests/panel/OpenPanel.h"

#include "net/networking_class.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QLabel>
#include <QMovie>
#include <QTimer>

#include <utility>

using HIDCommunicator::OrvikHIDManager;

namespace {

template <typename T> std::function<void()> clear(T *&pointer)
{
    return [&pointer, former = std::exchange(pointer, nullptr)] { pointer = former; };
}

} // namespace

// ---- What happens to a panel from outside ----

void OpenPanel::seeDevices(const QStringList &paths, const QList<int> &productIds)
{
    ConnectingR2(paths, productIds);
}

void OpenPanel::connectionChanges(int status)
{
    onHidConnetChanged(status);
}

void OpenPanel::receive(const QByteArray &report)
{
    onReceiveHIDdata(report);
}

void OpenPanel::endDownload()
{
    onFirmwareDownloaded();
}

void OpenPanel::pollProgress()
{
    onReadFirmwareTxt();
}

void OpenPanel::endTool(int exitCode, QProcess::ExitStatus status)
{
    onDfuProcessFinished(exitCode, status);
}

void OpenPanel::fireWatchdog()
{
    onDfuTimeout();
}

void OpenPanel::click()
{
    onUpgradeClicked();
}

void OpenPanel::listenForImages()
{
    connect(networking_class::getInstance(), &networking_class::network_finish_download, this,
            &FirmwareUpgradeWidget::onFirmwareDownloaded);
}

// ---- Steps of a run ----

void OpenPanel::startRun()
{
    startDownloadAndUpgrade();
}

void OpenPanel::flash(const QString &image, int productId)
{
    startUpgradeWithExternalTool(image, productId);
}

bool OpenPanel::handOverToOtg()
{
    return FirmwareUpgradeWidget::handOverToOtg() == PanelIs::Alive;
}

void OpenPanel::completeRun()
{
    completeUpgrade();
}

void OpenPanel::fail()
{
    showUpgradeFailureUI();
}

void OpenPanel::refreshVersions(int retriesLeft)
{
    requestVersionRefreshWithRetry(retriesLeft);
}

UpgradePlan OpenPanel::decidePlan()
{
    return decideUpgradePlan();
}

int OpenPanel::compareVersions(const QString &a, const QString &b) const
{
    return compareVersion(a, b);
}

// ---- Screens ----

void OpenPanel::createWidgetsAnew()
{
    setupUI();
}

void OpenPanel::retranslate()
{
    retranslateUI();
}

void OpenPanel::updateScreen()
{
    updateUIByUpgradeState();
}

void OpenPanel::showUpToDate()
{
    showUpToDateScreen();
}

void OpenPanel::showUpgradeAvailable()
{
    showUpgradeAvailableScreen();
}

void OpenPanel::waitForCable(Chip chip)
{
    showWaitingScreen(chip == Chip::Pc ? Port::Pc : Port::Otg);
}

void OpenPanel::layOutWaitingLine()
{
    updateWaitingLabelLayout();
}

// ---- What the model decides ----

int OpenPanel::normalId(Chip chip) const
{
    return chip == Chip::Pc ? pcNormalPid() : otgNormalPid();
}

int OpenPanel::bootLoaderId(Chip chip) const
{
    return chip == Chip::Pc ? pcDfuPid() : otgDfuPid();
}

bool OpenPanel::isBootLoaderId(int productId) const
{
    return isDfuPid(productId);
}

int OpenPanel::targetId(Chip chip) const
{
    return chip == Chip::Pc ? resolvePcTargetPid() : resolveOtgTargetPid();
}

QString OpenPanel::versionAddress(Chip chip) const
{
    return chip == Chip::Pc ? pcVersionUrl() : otgVersionUrl();
}

QString OpenPanel::imageAddressOfModel(Chip chip) const
{
    return chip == Chip::Pc ? pcFirmwareDownloadUrl() : otgFirmwareDownloadUrl();
}

QString OpenPanel::filePrefix() const
{
    return firmwareFilePrefix();
}

QString OpenPanel::offlineToolAddress() const
{
    return FirmwareUpgradeWidget::offlineToolAddress();
}

QString OpenPanel::progressFile() const
{
    return firmwareTxtPath();
}

QStringList OpenPanel::toolArguments(const QString &image, int productId) const
{
    return buildDfuArgs(image, productId);
}

// ---- Parts ----

OrvikHIDManager *OpenPanel::library() const
{
    return m_hidManager;
}

QProcess *OpenPanel::tool() const
{
    return m_dfuProcess;
}

QTimer *OpenPanel::pollTimer() const
{
    return m_progressTimer;
}

QTimer *OpenPanel::watchdog() const
{
    return m_dfuTimeoutTimer;
}

bool OpenPanel::isDeviceOpen() const
{
    return m_hidManager->getConnected();
}

std::function<void()> OpenPanel::forget(Part part)
{
    switch (part) {
    case Part::Library:
        return clear(m_hidManager);
    case Part::Bar:
        return clear(m_progressBar);
    case Part::Poll:
        return clear(m_progressTimer);
    case Part::Watchdog:
        return clear(m_dfuTimeoutTimer);
    case Part::Tool:
        return clear(m_dfuProcess);
    case Part::Movie:
        return clear(m_tipMovie);
    case Part::Animation:
        return clear(tipMoiveLb);
    case Part::DetectingText:
        return clear(m_detectingUsbLb);
    case Part::CableHint:
        return clear(m_connectHintLb);
    }
    Q_UNREACHABLE();
}

void OpenPanel::lose(Part part)
{
    const QObject *former = nullptr;
    switch (part) {
    case Part::Library:
        m_hidManager->release(); // it is the process's
        break;
    case Part::Bar:
        former = m_progressBar;
        break;
    case Part::Poll:
        former = m_progressTimer;
        break;
    case Part::Watchdog:
        former = m_dfuTimeoutTimer;
        break;
    case Part::Tool:
        former = m_dfuProcess;
        break;
    case Part::Movie:
        former = m_tipMovie;
        break;
    case Part::Animation:
        former = tipMoiveLb;
        break;
    case Part::DetectingText:
        former = m_detectingUsbLb;
        break;
    case Part::CableHint:
        former = m_connectHintLb;
        break;
    }
    forget(part);
    delete former;
}

int OpenPanel::receiversOf(const QObject &sender, const char *signal)
{
    return sender.receivers(signal);
}
