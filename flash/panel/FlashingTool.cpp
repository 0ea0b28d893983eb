// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Members of the panel (panel/FirmwareUpgradeWidget.h).
// Starts the external flashing tool for one image and one chip, and ends it when it takes too long. What the
// run comes to is judged from the tool's progress file alone, never from its exit code. Called by the
// sequence.

#include "flash/ProgressFile.h"
#include "flash/ProgressScale.h"
#include "panel/Colours.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/Visibility.h"
#include "system/Log.h"
#include "system/ToolProcess.h"

#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QTimer>
#include <QTimerEvent>

#include <chrono>

using namespace std::chrono_literals;

namespace QuillonFirmwareUpgrade {

namespace {
constexpr auto kToolStartLimit = 3000ms;
constexpr auto kToolTimeLimit = 60000ms;
constexpr auto kKillLimit = 1500ms;

QString toolPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/OrvikFirmwareUpdata.exe");
}
} // namespace

void FirmwareUpgradeWidget::startUpgradeWithExternalTool(const QString &binPath, int pid)
{
    Log::flash() << "startUpgradeWithExternalTool pid=" << QString::number(pid, 16)
                 << " lastDetectedPcPid=" << QString::number(lastDetectedPcPid, 16)
                 << " lastDetectedOtgPid=" << QString::number(lastDetectedOtgPid, 16)
                 << " autoRecover=" << m_autoRecoverRunning;
    resetStallDetector();
    m_leftoverReport = ProgressFile::clear(firmwareTxtPath());
    m_heldPolls = 0;
    if (!startTool(binPath, pid))
        return;
    if (m_progressBar)
        showFlashingStarted();
    m_dfuTimeoutTimer->start(kToolTimeLimit);
    m_progressTimer->start();
}

bool FirmwareUpgradeWidget::startTool(const QString &binPath, int pid)
{
    const QString tool = toolPath();
    Log::flash() << "##222 exePath is: " << tool;
    if (!QFile::exists(tool)) {
        Log::flash() << "OrvikFirmwareUpdata.exe isn't exit.";
        return false;
    }
    if (binPath.isEmpty() || !QFile::exists(binPath)) {
        Log::flash() << "Firmware upgrade bin file isn't exit.";
        return false;
    }
    if (!ToolProcess::start(*m_dfuProcess, tool, buildDfuArgs(binPath, pid), kToolStartLimit)) {
        Log::flash() << "Start OrvikFirmwareUpdata.exe failed.";
        return false;
    }
    return true;
}

QStringList FirmwareUpgradeWidget::buildDfuArgs(const QString &binPath, int pid) const
{
    QStringList arguments{binPath, QStringLiteral("--pid"),
                          QStringLiteral("%1").arg(pid, 4, 16, QLatin1Char('0'))};
    if (isDfuPid(pid))
        arguments.append(QStringLiteral("--already-in-dfu"));
    return arguments;
}

void FirmwareUpgradeWidget::showFlashingStarted()
{
    m_progressBar->setBackgroundColor(Colours::kBarIdle);
    const bool isOtgHalf = m_upgradePlan == UpgradePlan::Both && pcUpgradeCompleted;
    showProgress(isOtgHalf ? ProgressScale::kPcHalfDone : 0);
    const bool keepWaitingUI = isOtgHalf && isWaitingForOtg();
    Log::flash() << "[startUpgrade] keepWaitingUI=" << keepWaitingUI << " progressColor=red?"
                 << isWaitingForOtg() << " pcUpgradeCompleted=" << pcUpgradeCompleted;
    if (keepWaitingUI)
        return;
    hideAll({m_rocketLb, m_upgradeTextLb});
    m_isWaitingForUSB = false;
    updateWaitingLabelLayout();
    showAll({m_waitingIconLb, m_upgradingLb, upgradeProgDisPlay});
}

void FirmwareUpgradeWidget::onDfuProcessFinished(int exitCode, QProcess::ExitStatus)
{
    Log::flash() << "OrvikFirmwareUpdata.exe process exit, exitCode=" << exitCode;
    if (m_dfuTimeoutTimer->isActive())
        m_dfuTimeoutTimer->stop();
    bringPollForward();
}

/// The tool's last words are in its file by now, and its user waits: the timer fires once out of its turn.
void FirmwareUpgradeWidget::bringPollForward()
{
    if (m_progressTimer->isActive())
        QCoreApplication::postEvent(m_progressTimer, new QTimerEvent(m_progressTimer->timerId()));
}

void FirmwareUpgradeWidget::onDfuTimeout()
{
    killTool(helpersOfTheTool());
}

/// What a tool that has done its work has started may still have the new firmware to start.
FirmwareUpgradeWidget::ToolHelpers FirmwareUpgradeWidget::helpersOfTheTool() const
{
    const QString line = ProgressFile::read(firmwareTxtPath(), m_leftoverReport).line;
    return ProgressFile::hasDoneItsWork(line) ? ToolHelpers::Stay : ToolHelpers::End;
}

void FirmwareUpgradeWidget::killTool(ToolHelpers helpers)
{
    if (!isToolRunning())
        return;
    if (helpers == ToolHelpers::End)
        ToolProcess::kill(*m_dfuProcess);
    else
        m_dfuProcess->kill();
    m_dfuProcess->waitForFinished(int(kKillLimit.count()));
}

} // namespace QuillonFirmwareUpgrade
