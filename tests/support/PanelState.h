#pragma once

#include "panel/FirmwareUpgradeWidget.h"

#include <QString>
#include <QStringList>

/// Every flag, version, path and number of a panel as "name=value" lines, so that a test can state what
/// stayed as it was, or which lines changed. For tests that may look at private members.
inline QStringList panelState(const QuillonFirmwareUpgrade::FirmwareUpgradeWidget &panel)
{
    const auto text = [](const char *name, const QString &value) -> QString {
        return QLatin1String(name) + u'=' + value;
    };
    const auto flag = [&text](const char *name, bool value) {
        return text(name, value ? QStringLiteral("true") : QStringLiteral("false"));
    };
    const auto number = [&text](const char *name, int value) { return text(name, QString::number(value)); };
    return {
        flag("m_dragging", panel.m_dragging),
        text("m_remotePcVersion", panel.m_remotePcVersion),
        text("m_devicePcVersion", panel.m_devicePcVersion),
        text("m_remoteOtgVersion", panel.m_remoteOtgVersion),
        text("m_deviceOtgVersion", panel.m_deviceOtgVersion),
        text("m_pcFirmwarePath", panel.m_pcFirmwarePath),
        text("m_otgFirmwarePath", panel.m_otgFirmwarePath),
        text("m_pcDownloadUrl", panel.m_pcDownloadUrl),
        text("m_otgDownloadUrl", panel.m_otgDownloadUrl),
        number("m_upgradePlan", int(panel.m_upgradePlan)),
        flag("m_autoRecoverRunning", panel.m_autoRecoverRunning),
        flag("m_inFailureRetry", panel.m_inFailureRetry),
        flag("m_isUpgrading", panel.m_isUpgrading),
        flag("m_pcFirmwareDownloaded", panel.m_pcFirmwareDownloaded),
        flag("m_otgFirmwareDownloaded", panel.m_otgFirmwareDownloaded),
        flag("pcUpgradeCompleted", panel.pcUpgradeCompleted),
        number("m_downloadRetryCount", panel.m_downloadRetryCount),
        number("m_maxDownloadRetry", panel.m_maxDownloadRetry),
        flag("isChinese", panel.isChinese),
        flag("m_isWaitingForUSB", panel.m_isWaitingForUSB),
        number("m_deviceModel", int(panel.m_deviceModel)),
        number("lastDetectedOtgPid", panel.lastDetectedOtgPid),
        number("lastDetectedPcPid", panel.lastDetectedPcPid),
        number("m_lastProgressPercent", panel.m_lastProgressPercent),
        text("m_lastProgressTime", panel.m_lastProgressTime.toString(Qt::ISODateWithMs)),
        flag("m_postUpgradeWaiting", panel.m_postUpgradeWaiting),
        number("m_zeroVersionCount", panel.m_zeroVersionCount),
    };
}

/// The lines of \a after that are not in \a before.
inline QStringList changedState(const QStringList &before, const QStringList &after)
{
    QStringList changed;
    for (const QString &line : after) {
        if (!before.contains(line))
            changed.append(line);
    }
    return changed;
}

/// What the panel knows of its device and of the server; an empty text is a version not known.
inline void setVersions(QuillonFirmwareUpgrade::FirmwareUpgradeWidget &panel, const QString &devicePc,
                        const QString &remotePc, const QString &deviceOtg, const QString &remoteOtg)
{
    panel.m_devicePcVersion = devicePc;
    panel.m_remotePcVersion = remotePc;
    panel.m_deviceOtgVersion = deviceOtg;
    panel.m_remoteOtgVersion = remoteOtg;
}
