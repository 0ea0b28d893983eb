// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiled without access control, so that no test has to be.
#include "tests/panel/OpenPanel.h"

namespace {

template <typename T> T &ofChip(Chip chip, T &pc, T &otg)
{
    return chip == Chip::Pc ? pc : otg;
}

} // namespace

// ---- What it knows of device and server ----

DeviceModel OpenPanel::model() const
{
    return m_deviceModel;
}

void OpenPanel::pretendModel(DeviceModel model)
{
    m_deviceModel = model;
}

QString OpenPanel::deviceVersion(Chip chip) const
{
    return ofChip(chip, m_devicePcVersion, m_deviceOtgVersion);
}

void OpenPanel::pretendDeviceVersion(Chip chip, const QString &version)
{
    ofChip(chip, m_devicePcVersion, m_deviceOtgVersion) = version;
}

QString OpenPanel::serverVersion(Chip chip) const
{
    return ofChip(chip, m_remotePcVersion, m_remoteOtgVersion);
}

void OpenPanel::pretendServerVersion(Chip chip, const QString &version)
{
    ofChip(chip, m_remotePcVersion, m_remoteOtgVersion) = version;
}

void OpenPanel::pretendVersions(const QString &devicePc, const QString &serverPc, const QString &deviceOtg,
                                const QString &serverOtg)
{
    m_devicePcVersion = devicePc;
    m_remotePcVersion = serverPc;
    m_deviceOtgVersion = deviceOtg;
    m_remoteOtgVersion = serverOtg;
}

int OpenPanel::lastSeenId(Chip chip) const
{
    return ofChip(chip, lastDetectedPcPid, lastDetectedOtgPid);
}

void OpenPanel::pretendLastSeenId(Chip chip, int productId)
{
    ofChip(chip, lastDetectedPcPid, lastDetectedOtgPid) = productId;
}

UpgradePlan OpenPanel::plan() const
{
    return m_upgradePlan;
}

void OpenPanel::pretendPlan(UpgradePlan plan)
{
    m_upgradePlan = plan;
}

// ---- How far it has come ----

bool OpenPanel::isUpgrading() const
{
    return m_isUpgrading;
}

void OpenPanel::pretendUpgrading(bool isUpgrading)
{
    m_isUpgrading = isUpgrading;
}

bool OpenPanel::isRecovering() const
{
    return m_autoRecoverRunning;
}

void OpenPanel::pretendRecovering(bool isRecovering)
{
    m_autoRecoverRunning = isRecovering;
}

bool OpenPanel::offersRetry() const
{
    return m_inFailureRetry;
}

void OpenPanel::pretendRetryOffer(bool offers)
{
    m_inFailureRetry = offers;
}

bool OpenPanel::isPcDone() const
{
    return pcUpgradeCompleted;
}

void OpenPanel::pretendPcDone(bool isDone)
{
    pcUpgradeCompleted = isDone;
}

bool OpenPanel::isWaitingForCable() const
{
    return m_isWaitingForUSB;
}

void OpenPanel::pretendWaitingForCable(bool isWaiting)
{
    m_isWaitingForUSB = isWaiting;
}

bool OpenPanel::awaitsNewVersions() const
{
    return m_postUpgradeWaiting;
}

void OpenPanel::pretendAwaitingNewVersions(bool awaits)
{
    m_postUpgradeWaiting = awaits;
}

int OpenPanel::notReadyReplies() const
{
    return m_zeroVersionCount;
}

void OpenPanel::pretendNotReadyReplies(int count)
{
    m_zeroVersionCount = count;
}

// ---- Images ----

bool OpenPanel::hasImage(Chip chip) const
{
    return ofChip(chip, m_pcFirmwareDownloaded, m_otgFirmwareDownloaded);
}

void OpenPanel::pretendImage(Chip chip, bool isThere)
{
    ofChip(chip, m_pcFirmwareDownloaded, m_otgFirmwareDownloaded) = isThere;
}

QString OpenPanel::imagePath(Chip chip) const
{
    return ofChip(chip, m_pcFirmwarePath, m_otgFirmwarePath);
}

void OpenPanel::pretendImagePath(Chip chip, const QString &path)
{
    ofChip(chip, m_pcFirmwarePath, m_otgFirmwarePath) = path;
}

QString OpenPanel::imageAddress(Chip chip) const
{
    return ofChip(chip, m_pcDownloadUrl, m_otgDownloadUrl);
}

void OpenPanel::pretendImageAddress(Chip chip, const QString &address)
{
    ofChip(chip, m_pcDownloadUrl, m_otgDownloadUrl) = address;
}

int OpenPanel::downloadRetries() const
{
    return m_downloadRetryCount;
}

void OpenPanel::pretendDownloadRetries(int count)
{
    m_downloadRetryCount = count;
}

// ---- The tool's report ----

int OpenPanel::lastPercent() const
{
    return m_lastProgressPercent;
}

void OpenPanel::pretendLastPercent(int percent)
{
    m_lastProgressPercent = percent;
}

QDateTime OpenPanel::lastPercentSince() const
{
    return m_lastProgressTime;
}

void OpenPanel::pretendLastPercentSince(const QDateTime &time)
{
    m_lastProgressTime = time;
}

// ---- Window and language ----

bool OpenPanel::isChinese() const
{
    return FirmwareUpgradeWidget::isChinese;
}

void OpenPanel::pretendChinese(bool isChinese)
{
    FirmwareUpgradeWidget::isChinese = isChinese;
}

bool OpenPanel::isDragged() const
{
    return m_dragging;
}

QPoint OpenPanel::dragPosition() const
{
    return m_dragPosition;
}

// ---- The whole of it ----

QStringList OpenPanel::state() const
{
    const auto text = [](const char *name, const QString &value) -> QString {
        return QLatin1String(name) + u'=' + value;
    };
    const auto flag = [&text](const char *name, bool value) {
        return text(name, value ? QStringLiteral("true") : QStringLiteral("false"));
    };
    const auto number = [&text](const char *name, int value) { return text(name, QString::number(value)); };
    return {
        flag("m_dragging", m_dragging),
        text("m_remotePcVersion", m_remotePcVersion),
        text("m_devicePcVersion", m_devicePcVersion),
        text("m_remoteOtgVersion", m_remoteOtgVersion),
        text("m_deviceOtgVersion", m_deviceOtgVersion),
        text("m_pcFirmwarePath", m_pcFirmwarePath),
        text("m_otgFirmwarePath", m_otgFirmwarePath),
        text("m_pcDownloadUrl", m_pcDownloadUrl),
        text("m_otgDownloadUrl", m_otgDownloadUrl),
        number("m_upgradePlan", int(m_upgradePlan)),
        flag("m_autoRecoverRunning", m_autoRecoverRunning),
        flag("m_inFailureRetry", m_inFailureRetry),
        flag("m_isUpgrading", m_isUpgrading),
        flag("m_pcFirmwareDownloaded", m_pcFirmwareDownloaded),
        flag("m_otgFirmwareDownloaded", m_otgFirmwareDownloaded),
        flag("pcUpgradeCompleted", pcUpgradeCompleted),
        number("m_downloadRetryCount", m_downloadRetryCount),
        number("m_maxDownloadRetry", m_maxDownloadRetry),
        flag("isChinese", FirmwareUpgradeWidget::isChinese),
        flag("m_isWaitingForUSB", m_isWaitingForUSB),
        number("m_deviceModel", int(m_deviceModel)),
        number("lastDetectedOtgPid", lastDetectedOtgPid),
        number("lastDetectedPcPid", lastDetectedPcPid),
        number("m_lastProgressPercent", m_lastProgressPercent),
        text("m_lastProgressTime", m_lastProgressTime.toString(Qt::ISODateWithMs)),
        flag("m_postUpgradeWaiting", m_postUpgradeWaiting),
        number("m_zeroVersionCount", m_zeroVersionCount),
    };
}
