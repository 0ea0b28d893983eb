// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Members of the panel (panel/FirmwareUpgradeWidget.h).
// From the device's answers to a decision: mode, both versions, the server's newest versions, the plan.
// Counts in m_zeroVersionCount the "0.0.0" answers of a device that restarts after an upgrade. Called for
// every received report, also while an earlier one waits for the server or for the user.

#include "device/ControlMessages.h"
#include "device/Report.h"
#include "net/networking_class.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/LanguageTable.h"
#include "panel/Styles.h"
#include "system/Log.h"
#include "widgets/RoundMessageBox.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>

namespace QuillonFirmwareUpgrade {

namespace {
/// What a device reports while its firmware is not ready.
const QString kNotReadyVersion = QStringLiteral("0.0.0");
/// So many in a row after an upgrade, and the device is taken to be bricked.
constexpr int kNotReadyLimit = 5;

/// A version that waits for the server lets the next reply in. Both chips' replies and a repeated query fit;
/// a device that floods the bus must not nest without end.
constexpr int kNestedReplyLimit = 8;
} // namespace

/// The two version reads differ in these names only.
struct FirmwareUpgradeWidget::VersionChannel {
    quint16 address;
    QString FirmwareUpgradeWidget::*deviceVersion;
    QString FirmwareUpgradeWidget::*remoteVersion;
    QString (FirmwareUpgradeWidget::*url)() const;
    const char *notReadyLog;
    const char *deviceLog;
    const char *remoteLog;
};

void FirmwareUpgradeWidget::onReceiveHIDdata(QByteArray receiveData)
{
    if (const auto text = Report::logText(receiveData))
        Log::hid() << *text;
    const auto operation = Report::operation(receiveData);
    if (!operation || Report::isDropped(receiveData))
        return;
    switch (ControlOperation(*operation)) {
    case ControlOperation::RandomWrite:
        return handle_Randow_WR(receiveData);
    case ControlOperation::RandomRead:
        return handle_Randow_RD(receiveData);
    case ControlOperation::ContinuousRead:
        return handle_Continue_RD(receiveData);
    case ControlOperation::ContinuousWrite:
        return;
    }
}

void FirmwareUpgradeWidget::handle_Randow_WR(QByteArray) { }

void FirmwareUpgradeWidget::handle_Randow_RD(QByteArray receiveData)
{
    const QPointer<FirmwareUpgradeWidget> alive(this);
    for (const Report::RegisterValue &entry : Report::randomReadEntries(receiveData)) {
        if (alive && entry.address == DeviceRegister::kUpgradeMode)
            answerDeviceMode(entry.value != 0);
    }
}

void FirmwareUpgradeWidget::answerDeviceMode(bool upgradeMode)
{
    Log::hid() << " receive dfu mode is: " << (upgradeMode ? "on" : "off");
    if (upgradeMode) {
        warnOfUpgradeMode();
        return;
    }
    if (!m_hidManager)
        return;
    const ControlMessages *messages = ControlMessages::getInstance();
    m_hidManager->DC_AddSendData(
        messages->continuousRead(DeviceRegister::kPcVersion, DeviceRegister::kVersionLength));
    m_hidManager->DC_AddSendData(
        messages->continuousRead(DeviceRegister::kOtgVersion, DeviceRegister::kVersionLength));
}

/// Returns once the user has answered.
void FirmwareUpgradeWidget::warnOfUpgradeMode()
{
    if (m_warningBox)
        return; // the user has not answered the box about the same thing yet
    // Not on the stack: the panel may be deleted while the box is open, and its children with it.
    const QPointer<QMessageBox> box = new RoundMessageBox(
        QMessageBox::Warning, tr("提示"), tr("当前设备是固件升级模式"), QMessageBox::Ok, this);
    m_warningBox = box;
    box->setStyleSheet(Styles::kWarningBox);
    nameWarningButton();
    box->exec();
    delete box;
}

void FirmwareUpgradeWidget::nameWarningButton()
{
    m_warningBox->button(QMessageBox::Ok)->setText(shownLanguage().okButton);
}

void FirmwareUpgradeWidget::handle_Continue_RD(QByteArray receiveData)
{
    using Panel = FirmwareUpgradeWidget;
    static const VersionChannel channels[] = {
        {DeviceRegister::kPcVersion, &Panel::m_devicePcVersion, &Panel::m_remotePcVersion,
         &Panel::pcVersionUrl, "[handle_Continue_RD] PC版本号为 0.0.0，重试计数:", "DEVICE PC VERSION : ",
         "Remote PC Firmware Version is: "},
        {DeviceRegister::kOtgVersion, &Panel::m_deviceOtgVersion, &Panel::m_remoteOtgVersion,
         &Panel::otgVersionUrl, "[handle_Continue_RD] OTG版本号为 0.0.0，重试计数:", "DEVICE OTG VERSION : ",
         "Remote OTG Firmware Version is: "},
    };

    const auto reply = Report::versionReply(receiveData);
    if (!reply || m_nestedReplies >= kNestedReplyLimit)
        return;
    ++m_nestedReplies;
    const QPointer<FirmwareUpgradeWidget> alive(this);
    const auto leave = qScopeGuard([&alive] {
        if (alive)
            --alive->m_nestedReplies;
    });
    // While one chip's reply waits for the server, the other chip's comes in and may end the waiting period;
    // the completed screen must outlast both.
    const bool silent = m_postUpgradeWaiting;
    for (const VersionChannel &channel : channels) {
        if (channel.address != reply->start)
            continue;
        if (reply->version.isEmpty() || isTooEarly(channel, reply->version)
            || takeDeviceVersion(channel, reply->version) == PanelIs::Gone)
            return;
    }
    takeFreshVersions(silent);
}

/// Whether the device still restarts after an upgrade, so that its answer is not to be looked at. Counts such
/// answers: so many are believed in the end.
bool FirmwareUpgradeWidget::isTooEarly(const VersionChannel &channel, const QString &version)
{
    if (version == kNotReadyVersion && m_postUpgradeWaiting) {
        Log::hid() << channel.notReadyLog << ++m_zeroVersionCount;
        if (m_zeroVersionCount < kNotReadyLimit) {
            Log::hid() << "[handle_Continue_RD] 暂时忽略 0.0.0，等待设备准备好";
            return true;
        }
        Log::hid() << "[handle_Continue_RD] 连续5次收到 0.0.0，判定为设备变砖，接受此版本号";
        m_zeroVersionCount = 0;
    } else if (version != kNotReadyVersion) {
        m_zeroVersionCount = 0;
    }
    return false;
}

/// Stores what the device reported and asks the server for the newest version, at most about 2 s.
FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::takeDeviceVersion(const VersionChannel &channel,
                                                                        const QString &version)
{
    this->*channel.deviceVersion = version;
    Log::hid() << channel.deviceLog << version;
    if (queryServer((this->*channel.url)(), channel.remoteVersion) == PanelIs::Gone)
        return PanelIs::Gone;
    Log::hid() << channel.remoteLog << this->*channel.remoteVersion;
    return PanelIs::Alive;
}

/// Blocks until the server has answered, at most about 2 s.
FirmwareUpgradeWidget::PanelIs
FirmwareUpgradeWidget::queryServer(const QString &url, QString FirmwareUpgradeWidget::*remoteVersion)
{
    const QPointer<FirmwareUpgradeWidget> alive(this);
    const QString version = networking_class::getInstance()->getVersion(url);
    if (!alive)
        return PanelIs::Gone;
    this->*remoteVersion = version;
    return PanelIs::Alive;
}

} // namespace QuillonFirmwareUpgrade
