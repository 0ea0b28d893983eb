// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Builds the panel, takes it down, and changes the model it serves. setDeviceModel() clears every flag of the
// run state while the panel is idle. Called by the host.

#include "flash/ProgressFile.h"
#include "net/networking_class.h"
#include "panel/Delays.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "system/Log.h"
#include "system/ToolProcess.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMovie>
#include <QPointer>
#include <QTimer>

using namespace std::chrono_literals;

namespace QuillonFirmwareUpgrade {

namespace {
constexpr QSize kPanelSize{472, 418};
constexpr auto kFirstQueryDelay = 500ms;
/// A device that was opened for the new model needs this long before it answers.
constexpr auto kModelChangeQueryDelay = 2000ms;
constexpr auto kProgressPollInterval = 100ms;

constexpr auto kDrainLimit = 100ms;
constexpr auto kTerminateLimit = 300ms;
constexpr auto kKillLimit = 500ms;

/// A parent that is being destroyed deletes its children one by one and has a gap in its list where the
/// current one was. What is still posted to it must not be delivered: handling it may run into that gap.
void dropEventsOfDyingParents(const QObject *child)
{
    for (QObject *parent = child->parent(); parent && !parent->children().contains(child);
         parent = parent->parent()) {
        QCoreApplication::removePostedEvents(parent);
        child = parent;
    }
}

void drainEvents(const QObject *panel)
{
    dropEventsOfDyingParents(panel);
    QCoreApplication::processEvents(QEventLoop::AllEvents, int(kDrainLimit.count()));
}
} // namespace

FirmwareUpgradeWidget::FirmwareUpgradeWidget(QWidget *parent)
    : QWidget(parent)
{
    Log::panel() << "========================================";
    Log::panel() << "[Constructor] FirmwareUpgradeWidget CREATED!";
    Log::panel() << "[Constructor] Initial state: m_isUpgrading=" << m_isUpgrading
                 << " m_autoRecoverRunning=" << m_autoRecoverRunning;
    Log::panel() << "========================================";

    removeStaleProgressFile();
    setUpWindow();
    setupUI();
    retranslateUI();
    initHIDCommunicator();
    connect(this, &FirmwareUpgradeWidget::onDeviceBrickedDetected, this,
            &FirmwareUpgradeWidget::startAutoRecoverUpgrade);
    createToolAndTimers();
    runAfter(kFirstQueryDelay, this, [this] { queryDeviceMode(); });

    Log::panel() << "[Constructor] Finished. m_isUpgrading=" << m_isUpgrading
                 << " m_autoRecoverRunning=" << m_autoRecoverRunning;
}

FirmwareUpgradeWidget::~FirmwareUpgradeWidget()
{
    Log::panel() << "[Destructor] Starting cleanup...";
    disconnectEverything();
    drainEvents(this);
    for (QTimer *timer : {m_progressTimer, m_dfuTimeoutTimer}) {
        if (timer && timer->isActive())
            timer->stop();
    }
    endRunningTool();
    if (m_hidManager) {
        m_hidManager->release();
        m_hidManager = nullptr;
    }
    drainEvents(this);
    Log::panel() << "[Destructor] Cleanup completed";
}

/// A result that an earlier run of the host left behind would be read as this run's.
void FirmwareUpgradeWidget::removeStaleProgressFile()
{
    const QString path = ProgressFile::path();
    if (!QFile::exists(path))
        return;
    QFile::remove(path);
    Log::panel() << "[Init] Removed stale progress file:" << path;
}

void FirmwareUpgradeWidget::setUpWindow()
{
    setFixedSize(kPanelSize);
    setWindowFlags(Qt::FramelessWindowHint);
    setWindowModality(Qt::ApplicationModal);
    setAttribute(Qt::WA_StyledBackground, true);
    setObjectName(QStringLiteral("FirmwareUpgradeWidget"));
    setStyleSheet(QStringLiteral("#FirmwareUpgradeWidget {  border: 1px solid rgba(69, 70, 83, 1);"
                                 "  border-radius: 4px;  background-color: rgba(31, 32, 40, 1);}"));
    setWindowTitle(tr("固件升级"));
}

void FirmwareUpgradeWidget::createToolAndTimers()
{
    m_dfuProcess = new QProcess(this);
    ToolProcess::prepare(*m_dfuProcess);
    m_dfuTimeoutTimer = new QTimer(this);
    m_progressTimer = new QTimer(this);
    m_dfuTimeoutTimer->setSingleShot(true);
    m_dfuTimeoutTimer->setTimerType(Qt::PreciseTimer);
    m_progressTimer->setInterval(kProgressPollInterval);
    connect(m_dfuProcess, &QProcess::finished, this, &FirmwareUpgradeWidget::onDfuProcessFinished);
    connect(m_dfuTimeoutTimer, &QTimer::timeout, this, &FirmwareUpgradeWidget::onDfuTimeout);
    connect(m_progressTimer, &QTimer::timeout, this, &FirmwareUpgradeWidget::onReadFirmwareTxt);
}

/// Nothing may reach a panel that is going down: no signal, no call that is already queued, no delayed
/// action.
void FirmwareUpgradeWidget::disconnectEverything()
{
    const QObject *const senders[] = {m_hidManager,
                                      networking_class::getInstance(),
                                      m_progressBar,
                                      m_progressTimer,
                                      m_dfuTimeoutTimer,
                                      m_dfuProcess,
                                      this};
    for (const QObject *sender : senders) {
        if (sender)
            disconnect(sender, nullptr, this, nullptr);
    }
    for (QTimer *timer : findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly))
        disconnect(timer, nullptr, this, nullptr);
    networking_class::getInstance()->giveUpUnheardDownload();
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
    QCoreApplication::removePostedEvents(this, QEvent::DeferredDelete);
}

void FirmwareUpgradeWidget::endRunningTool()
{
    if (!m_dfuProcess || m_dfuProcess->state() == QProcess::NotRunning)
        return;
    m_dfuProcess->terminate();
    const bool hasEnded = m_dfuProcess->waitForFinished(int(kTerminateLimit.count()));
    // Also for what a tool that was asked to end has left behind.
    ToolProcess::kill(*m_dfuProcess);
    if (!hasEnded && !m_dfuProcess->waitForFinished(int(kKillLimit.count())))
        leaveTool();
}

/// What the system cannot end at once, because a driver still holds it, would keep the destructor of QProcess
/// for half a minute, and the host with it.
void FirmwareUpgradeWidget::leaveTool()
{
    m_dfuProcess->setParent(nullptr);
    connect(m_dfuProcess, &QProcess::finished, m_dfuProcess, &QObject::deleteLater);
    m_dfuProcess = nullptr;
}

void FirmwareUpgradeWidget::setDeviceModel(DeviceModel model)
{
    if (model == m_deviceModel)
        return;
    m_deviceModel = model;
    Log::panel() << "setDeviceModel:" << firmwareFilePrefix();
    if (m_isUpgrading) {
        Log::panel() << "[setDeviceModel] 升级进行中，跳过UI更新";
        return;
    }
    refreshConnectionHint();
    resetRunState();
    disconnect(this, &FirmwareUpgradeWidget::r2otgConnected, nullptr, nullptr);
    connectToModel();
}

void FirmwareUpgradeWidget::refreshConnectionHint()
{
    if (tipMoiveLb && m_tipMovie)
        loadTipMovie(Port::Pc);
    if (m_connectHintLb)
        m_connectHintLb->setText(connectionHint(Port::Pc));
}

void FirmwareUpgradeWidget::resetRunState()
{
    for (QString *version :
         {&m_devicePcVersion, &m_deviceOtgVersion, &m_remotePcVersion, &m_remoteOtgVersion})
        version->clear();
    m_pcFirmwareDownloaded = m_otgFirmwareDownloaded = pcUpgradeCompleted = false;
    m_autoRecoverRunning = m_inFailureRetry = false;
    lastDetectedOtgPid = lastDetectedPcPid = 0;
    resetStallDetector();
    m_downloadRetryCount = 0;
    m_upgradePlan = UpgradePlan::None;
}

void FirmwareUpgradeWidget::connectToModel()
{
    if (!m_hidManager)
        return;
    QStringList paths;
    QList<int> productIds;
    m_hidManager->getOrvikHIDListPath(paths, productIds);
    const bool isPresent = productIds.contains(pcNormalPid()) || productIds.contains(pcDfuPid());
    if (isPresent && m_hidManager->getConnected()) {
        Log::panel() << "[setDeviceModel] target device already connected, skip disconnect/reconnect";
        queryDeviceMode();
    } else {
        m_hidManager->closeOrvikSendDataThread();
        m_hidManager->closeOrvikReceiveDataThread();
        m_hidManager->disconnectDevice(0);
        const QPointer<FirmwareUpgradeWidget> alive(this);
        ConnectingR2(paths, productIds);
        Log::panel() << "1@####";
        if (!alive)
            return;
    }
    runAfter(kModelChangeQueryDelay, this, [this] {
        if (!m_hidManager || !m_hidManager->getConnected())
            return;
        Log::panel() << "2000 singleShot";
        queryDeviceMode();
    });
}

} // namespace QuillonFirmwareUpgrade
