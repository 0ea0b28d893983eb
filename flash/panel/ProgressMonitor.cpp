// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Members of the panel (panel/FirmwareUpgradeWidget.h).
// Follows the flashing tool through its progress file, ten times a second and as soon as the tool has ended,
// to the verdict of the run. Sets m_lastProgressPercent and m_lastProgressTime, the memory of the stall
// detector, counts m_heldPolls, and clears m_isWaitingForUSB when the OTG chip is being written. Called by
// m_progressTimer, which runs from the start of the tool to the verdict.

#include "flash/ProgressFile.h"
#include "flash/ProgressScale.h"
#include "flash/StallRule.h"
#include "panel/Colours.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "system/Log.h"

#include <QLabel>
#include <QTimer>

namespace QuillonFirmwareUpgrade {

namespace {
/// The waiting screen stays up until the OTG chip demonstrably takes its image.
constexpr int kOtgProgressShownFrom = 3;
/// How many polls a file may keep everyone out after the tool has ended: 2 s, longer than a virus scanner
/// looks at it.
constexpr int kHeldPollLimit = 20;
} // namespace

QString FirmwareUpgradeWidget::firmwareTxtPath() const
{
    return ProgressFile::pathWithFolder();
}

bool FirmwareUpgradeWidget::isToolRunning() const
{
    return m_dfuProcess && m_dfuProcess->state() != QProcess::NotRunning;
}

/// The colour of the bar says so from the hand-over until the OTG chip is being written.
bool FirmwareUpgradeWidget::isWaitingForOtg() const
{
    return m_progressBar && m_progressBar->progressColor() == Colours::kProgressWaitingForOtg;
}

void FirmwareUpgradeWidget::onReadFirmwareTxt()
{
    using Outcome = ProgressFile::Reading::Outcome;
    const ProgressFile::Reading reading = ProgressFile::read(firmwareTxtPath(), m_leftoverReport);
    switch (reading.outcome) {
    case Outcome::Held:
        if (isToolRunning() || m_heldPolls++ < kHeldPollLimit)
            return;
        [[fallthrough]];
    case Outcome::None:
        return failWhenToolEnded(QStringLiteral("[状态] 进程已退出但无进度文件，判定为失败"));
    case Outcome::Empty:
        return failWhenToolEnded(QStringLiteral("[状态] 进程已退出但进度文件为空，判定为失败"));
    case Outcome::Line:
        return takeLine(reading.line);
    }
}

void FirmwareUpgradeWidget::takeLine(const QString &line)
{
    using ProgressFile::Report;
    if (line == ProgressFile::kAllWritten && !isToolRunning()) {
        Log::flash() << "[状态] 进度100%且进程已退出，视为升级成功";
        return takeResult(ProgressFile::kSuccess);
    }
    const Report report = ProgressFile::judge(line);
    if (report.kind == Report::Kind::Percentage && m_progressBar)
        takePercentage(report.value);
    else if (report.kind == Report::Kind::Result)
        takeResult(report.value);
}

/// Without a report from a tool that still runs there is nothing to do: it is starting.
void FirmwareUpgradeWidget::failWhenToolEnded(const QString &reason)
{
    if (!m_isUpgrading || isToolRunning())
        return;
    Log::flash() << reason;
    m_progressTimer->stop();
    showUpgradeFailureUI();
}

void FirmwareUpgradeWidget::takeResult(int status)
{
    m_progressTimer->stop();
    m_dfuTimeoutTimer->stop();
    if (status != ProgressFile::kSuccess) {
        Log::flash() << "[状态] 升级失败(status=" << status << ")，显示失败重试 UI";
        showUpgradeFailureUI();
    } else {
        Log::flash() << "Successfully upgrade !!!";
        Log::flash() << "[onReadFirmwareTxt] success! verCompLb visible=" << verCompLb->isVisible()
                     << " tipMoiveLb visible=" << tipMoiveLb->isVisible() << " progressColor=red?"
                     << isWaitingForOtg() << " upgradeProgDisPlay visible=" << upgradeProgDisPlay->isVisible()
                     << " m_isWaitingForUSB=" << m_isWaitingForUSB;
        const bool pcHalfDone = m_upgradePlan == UpgradePlan::Both && !pcUpgradeCompleted;
        if (!pcHalfDone)
            completeUpgrade();
        else if (handOverToOtg() == PanelIs::Gone)
            return;
    }
    killTool(status == ProgressFile::kSuccess ? ToolHelpers::Stay : ToolHelpers::End);
}

void FirmwareUpgradeWidget::takePercentage(int percent)
{
    if (isStalled(percent))
        return endStalledRun(percent);

    using ProgressScale::Part;
    const Part half = pcUpgradeCompleted ? Part::OtgHalf : Part::PcHalf;
    const int displayed
        = ProgressScale::shown(percent, m_upgradePlan == UpgradePlan::Both ? half : Part::WholeRun);
    Log::flash() << "[onReadFirmwareTxt] percent=" << percent << " displayPercent=" << displayed
                 << " progressColor=red?" << isWaitingForOtg()
                 << " pcUpgradeCompleted=" << pcUpgradeCompleted;
    switchToOtgProgress(percent);
    showProgress(displayed);
}

/// Records \a percent when it is news.
bool FirmwareUpgradeWidget::isStalled(int percent)
{
    const QDateTime now = QDateTime::currentDateTime();
    const StallRule::Verdict verdict
        = StallRule::judge({m_lastProgressPercent, m_lastProgressTime}, percent, now);
    if (verdict == StallRule::Verdict::News) {
        m_lastProgressPercent = percent;
        m_lastProgressTime = now;
    }
    return verdict == StallRule::Verdict::Stalled;
}

void FirmwareUpgradeWidget::endStalledRun(int percent)
{
    if (percent >= ProgressScale::kAllDone) {
        // Everything is written and the tool merely does not quit: the next poll finds it ended and counts a
        // success.
        Log::flash() << "[状态] 进度100%停滞3秒，主动终止外部工具";
        killTool(helpersOfTheTool());
        return;
    }
    Log::flash() << "[状态] 升级进度停滞3秒，判定为失败";
    m_progressTimer->stop();
    killTool();
    showUpgradeFailureUI();
}

void FirmwareUpgradeWidget::switchToOtgProgress(int percent)
{
    const bool switches = m_upgradePlan == UpgradePlan::Both && pcUpgradeCompleted && isWaitingForOtg()
        && percent >= kOtgProgressShownFrom;
    Log::flash() << "[onReadFirmwareTxt] 界面切换条件=" << switches;
    if (!switches)
        return;
    Log::flash() << "[onReadFirmwareTxt] 执行界面切换：隐藏动图，恢复版本号";
    hideConnectionHint();
    showCardAndNotes(true);
    upgradeProgDisPlay->show();
    if (m_upgradingLb) {
        m_isWaitingForUSB = false;
        updateWaitingLabelLayout();
    }
    m_progressBar->setProgressColor(Colours::kProgress);
}

} // namespace QuillonFirmwareUpgrade
