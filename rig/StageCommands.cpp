// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Programs that a scenario runs, for what lies outside this process: a real server beside the simulated
// device.
#include "rig/ScenarioStage.h"

#include "rig/ScenarioWords.h"

#include <QProcess>

namespace rig {

namespace {

constexpr std::chrono::minutes kCommandLimit{5};

/// What a program that failed said last.
QString complaintOf(QProcess &process)
{
    if (process.error() == QProcess::FailedToStart)
        return process.errorString();
    const QString said = QString::fromLocal8Bit(process.readAllStandardError()).trimmed().section(u'\n', -1);
    const QString status = process.exitStatus() == QProcess::NormalExit
        ? QStringLiteral("status %1").arg(process.exitCode())
        : QStringLiteral("it crashed");
    return said.isEmpty() ? status : status + QStringLiteral(": ") + said;
}

} // namespace

ScenarioStage::~ScenarioStage() = default;

Outcome ScenarioStage::runCommand(Words words)
{
    if (!m_command) {
        m_command = std::make_unique<QProcess>();
        m_command->startCommand(words.at(0));
    }
    if (m_command->state() != QProcess::NotRunning)
        return Outcome::notYet(QStringLiteral("it runs"), durationFrom(words.at(1)).value_or(kCommandLimit));
    const std::unique_ptr<QProcess> ended = std::move(m_command);
    const bool isFine = ended->error() == QProcess::UnknownError && ended->exitCode() == 0;
    return isFine ? Outcome::done() : Outcome::failed(complaintOf(*ended));
}

} // namespace rig
