// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Members of the panel (panel/FirmwareUpgradeWidget.h).
// Finds the device on the HID bus. Every list of paths, whether the HID library announced it or the panel
// asked for it, is judged by ConnectingR2, which opens the device, starts a recovery or announces the OTG
// interface. Sets lastDetectedPcPid and lastDetectedOtgPid, and m_isUpgrading with m_autoRecoverRunning when
// a recovery starts.

#include "device/BusScan.h"
#include "device/ControlMessages.h"
#include "device/ModelTable.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "system/Log.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QPointer>

namespace QuillonFirmwareUpgrade {

namespace {
/// The log names one model's code for both models.
void logInterface(const BusInterface &found)
{
    using Kind = BusInterface::Kind;
    Log::hid() << "2pid is: " << found.productIdText;
    switch (found.kind) {
    case Kind::PcNormal:
        Log::hid() << "find R2 device";
        break;
    case Kind::PcBootLoader:
        if (found.newModel) {
            const QLatin1String code = rowOf(*found.newModel).code;
            Log::hid() << QStringLiteral("[ConnectingR2] 检测到%1 DFU PID，自动切换 model 为 %1").arg(code);
        }
        Log::hid() << "find DFU device, pid=" << QString::number(found.productId, 16);
        break;
    case Kind::OtgNormal:
        Log::hid() << "find R2 OTG device";
        break;
    case Kind::OtgBootLoader:
        Log::hid() << "find R2 OTG DFU device";
        break;
    case Kind::Foreign:
        break;
    }
}
} // namespace

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

/// Judges the devices that are present right now. A receiver of the signals that this emits may delete the
/// panel.
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
    Log::hid() << "[ConnectingR2] START - m_isUpgrading=" << m_isUpgrading
               << " m_autoRecoverRunning=" << m_autoRecoverRunning;
    Log::hid() << "[FirmwareUpgradeWidget定时器扫描] 发现 " << devices.size() << " 个设备";

    using Kind = BusInterface::Kind;
    const BusScan scan = scanBus(devices, {m_deviceModel, lastDetectedPcPid, lastDetectedOtgPid});
    m_deviceModel = scan.known.model;
    lastDetectedPcPid = scan.known.pcPid;
    lastDetectedOtgPid = scan.known.otgPid;
    for (const BusInterface &found : scan.interfaces)
        logInterface(found);

    const bool otgSeen = scan.found(Kind::OtgNormal) || scan.found(Kind::OtgBootLoader);
    if (m_isUpgrading && isOtgPhase()) {
        if (!otgSeen) {
            Log::hid() << "OTG ready phase, but OTG device not found yet";
            return;
        }
        Log::hid() << "OTG already present, trigger OTG upgrade directly";
        Q_EMIT r2otgConnected();
        return;
    }

    Log::hid() << "[ConnectingR2] foundR2=" << scan.found(Kind::PcNormal)
               << " foundR2DFU=" << scan.found(Kind::PcBootLoader)
               << " foundR2OTG=" << scan.found(Kind::OtgNormal)
               << " foundR2OTGDFU=" << scan.found(Kind::OtgBootLoader);
    if (scan.found(Kind::PcNormal))
        connectToDevice(scan.pathOf(Kind::PcNormal));
    else if (scan.found(Kind::PcBootLoader))
        recoverBrickedDevice();
    else if (otgSeen && m_isUpgrading)
        Log::hid() << "find r2 otg device, but not ready for OTG upgrade yet";
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
    Log::hid() << "connected R2 successfully!!!";
}

void FirmwareUpgradeWidget::recoverBrickedDevice()
{
    Log::hid() << "$$#####----=-=== m_isUpgrading is : " << m_isUpgrading
               << " m_autoRecoverRunning is: " << m_autoRecoverRunning;
    if (m_isUpgrading || m_autoRecoverRunning)
        return;
    m_isUpgrading = true;
    m_autoRecoverRunning = true;
    Q_EMIT onDeviceBrickedDetected();
    Log::hid() << "find DFU PID and trigger auto recover.";
}

void FirmwareUpgradeWidget::onHidConnetChanged(int remove)
{
    constexpr int kConnected = 0;
    constexpr int kRemoved = 1;
    if (remove == kRemoved) {
        Log::hid() << "\n[状态] 设备已断开！定时器应该切换到1秒快速扫描";
        if (m_hidManager) {
            m_hidManager->closeOrvikSendDataThread();
            m_hidManager->closeOrvikReceiveDataThread();
        }
    } else if (remove == kConnected) {
        Log::hid() << "[状态] 设备连接信号";
    }
}

} // namespace QuillonFirmwareUpgrade
