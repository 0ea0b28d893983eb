// Finds the device on the HID bus. Every list of paths, whether the HID library announced it or the panel
// asked for it, is judged by ConnectingR2, which opens the device, starts a recovery or announces the OTG
// interface. Sets lastDetectedPcPid and lastDetectedOtgPid, and m_isUpgrading with m_autoRecoverRunning when
// a recovery starts.

#include "device/ControlMessages.h"
#include "device/ModelTable.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/Log.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QPointer>

namespace QuillonFirmwareUpgrade {

namespace {
/// The product ID digits that follow "pid_" in a device path; null when the path has none.
QString productIdText(const QString &lowerCasePath)
{
    static const QString marker = QStringLiteral("pid_");
    const qsizetype at = lowerCasePath.indexOf(marker);
    return at < 0 ? QString() : lowerCasePath.mid(at + marker.size(), 4);
}

struct ModelSwitch {
    DeviceModel model;
    const char *logText;
};
// A boot loader tells its model beyond doubt, whatever model the host has chosen.
constexpr ModelSwitch kBootLoaderModels[] = {
    {DeviceModel::R1, "[ConnectingR2] 检测到R1 DFU PID，自动切换 model 为 R1"},
    {DeviceModel::R2, "[ConnectingR2] 检测到R2 DFU PID，自动切换 model 为 R2"},
};

const ModelSwitch *bootLoaderModel(int pid)
{
    for (const ModelSwitch &row : kBootLoaderModels) {
        if (pid == identifiersOf(row.model).pcDfuPid)
            return &row;
    }
    return nullptr;
}
} // namespace

/// What one list of paths showed. The names in the log carry one model's code for both models.
struct FirmwareUpgradeWidget::Scan {
    bool foundR2 = false;
    bool foundR2DFU = false;
    bool foundR2OTG = false;
    bool foundR2OTGDFU = false;
    QString pcPath;
    int pcPid = 0;
};

void FirmwareUpgradeWidget::initHIDCommunicator()
{
    using HIDCommunicator::OrvikHIDManager;
    m_hidManager = OrvikHIDManager::instance();
    if (!m_hidManager)
        return;
    m_hidManager->acquire();
    connect(m_hidManager, &OrvikHIDManager::deviceListChanged, this, &FirmwareUpgradeWidget::ConnectingR2,
            Qt::QueuedConnection);
    connect(m_hidManager, &OrvikHIDManager::blockReceiveData, this, &FirmwareUpgradeWidget::onReceiveHIDdata,
            Qt::QueuedConnection);
    connect(m_hidManager, &OrvikHIDManager::blockHidConnetStatus, this,
            &FirmwareUpgradeWidget::onHidConnetChanged, Qt::QueuedConnection);
}

/// Judges the devices that are present right now. Whoever hears of what is found may delete the panel.
FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::rescan()
{
    if (!m_hidManager)
        return PanelIs::Alive;
    QStringList paths;
    QList<int> productIds;
    m_hidManager->getOrvikHIDListPath(paths, productIds);
    const QPointer<FirmwareUpgradeWidget> alive(this);
    ConnectingR2(paths, productIds);
    return alive ? PanelIs::Alive : PanelIs::Gone;
}

/// Asks whether the device runs its normal firmware; a "no upgrade mode" answer leads on to the versions.
void FirmwareUpgradeWidget::queryDeviceMode()
{
    if (m_hidManager)
        m_hidManager->DC_AddSendData(
            ControlMessages::getInstance()->randomRead(DeviceRegister::kUpgradeMode));
}

void FirmwareUpgradeWidget::ConnectingR2(const QStringList &devices, const QList<int> &)
{
    logLine() << "[ConnectingR2] START - m_isUpgrading=" << m_isUpgrading
              << " m_autoRecoverRunning=" << m_autoRecoverRunning;
    logLine() << "[FirmwareUpgradeWidget定时器扫描] 发现 " << devices.size() << " 个设备";

    Scan scan;
    for (const QString &path : devices)
        classify(path, scan);
    if (scan.pcPid != 0)
        lastDetectedPcPid = scan.pcPid;

    const bool otgSeen = scan.foundR2OTG || scan.foundR2OTGDFU;
    if (m_isUpgrading && isOtgPhase()) {
        if (!otgSeen) {
            logLine() << "OTG ready phase, but OTG device not found yet";
            return;
        }
        logLine() << "OTG already present, trigger OTG upgrade directly";
        Q_EMIT r2otgConnected();
        return;
    }

    logLine() << "[ConnectingR2] foundR2=" << scan.foundR2 << " foundR2DFU=" << scan.foundR2DFU
              << " foundR2OTG=" << scan.foundR2OTG << " foundR2OTGDFU=" << scan.foundR2OTGDFU;
    if (scan.foundR2)
        connectToDevice(scan.pcPath);
    else if (scan.foundR2DFU)
        recoverBrickedDevice();
    else if (otgSeen && m_isUpgrading)
        logLine() << "find r2 otg device, but not ready for OTG upgrade yet";
}

void FirmwareUpgradeWidget::classify(const QString &path, Scan &scan)
{
    const QString digits = productIdText(path.toLower());
    if (digits.isNull())
        return;
    logLine() << "2pid is: " << digits;
    bool isNumber = false;
    const int pid = digits.toInt(&isNumber, 16);
    if (!isNumber)
        return;

    if (pid == pcNormalPid()) {
        scan.pcPath = path;
        scan.foundR2 = true;
        scan.pcPid = pid;
        logLine() << "find R2 device";
    } else if (const ModelSwitch *bootLoader = bootLoaderModel(pid)) {
        scan.foundR2DFU = true;
        scan.pcPid = pid;
        if (m_deviceModel != bootLoader->model) {
            m_deviceModel = bootLoader->model;
            logLine() << bootLoader->logText;
        }
        logLine() << "find DFU device, pid=" << QString::number(pid, 16);
    } else if (pid == otgNormalPid()) {
        scan.foundR2OTG = true;
        lastDetectedOtgPid = pid;
        logLine() << "find R2 OTG device";
    } else if (pid == otgDfuPid()) {
        scan.foundR2OTGDFU = true;
        if (lastDetectedOtgPid != otgNormalPid())
            lastDetectedOtgPid = pid;
        logLine() << "find R2 OTG DFU device";
    }
}

void FirmwareUpgradeWidget::connectToDevice(const QString &path)
{
    if (!m_hidManager || m_hidManager->getConnected() || path.isEmpty())
        return;
    // A device that cannot be opened yet is tried again by the next scan.
    if (!m_hidManager->openHIDHandle(path, kVendorId, pcNormalPid(), 0))
        return;
    m_hidManager->createOrvikSendDataThread();
    m_hidManager->createOrvikReceiveDataThread();
    logLine() << "connected R2 successfully!!!";
}

void FirmwareUpgradeWidget::recoverBrickedDevice()
{
    logLine() << "$$#####----=-=== m_isUpgrading is : " << m_isUpgrading
              << " m_autoRecoverRunning is: " << m_autoRecoverRunning;
    if (m_isUpgrading || m_autoRecoverRunning)
        return;
    m_isUpgrading = true;
    m_autoRecoverRunning = true;
    Q_EMIT onDeviceBrickedDetected();
    logLine() << "find DFU PID and trigger auto recover.";
}

void FirmwareUpgradeWidget::onHidConnetChanged(int remove)
{
    constexpr int kConnected = 0;
    constexpr int kRemoved = 1;
    if (remove == kRemoved) {
        logLine() << "\n[状态] 设备已断开！定时器应该切换到1秒快速扫描";
        if (m_hidManager) {
            m_hidManager->closeOrvikSendDataThread();
            m_hidManager->closeOrvikReceiveDataThread();
        }
    } else if (remove == kConnected) {
        logLine() << "[状态] 设备连接信号";
    }
}

} // namespace QuillonFirmwareUpgrade
