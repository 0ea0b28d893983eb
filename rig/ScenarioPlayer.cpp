// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ScenarioPlayer.h"

#include "rig/ScenarioGrammar.h"
#include "rig/ScenarioStage.h"

#include <QFileInfo>

namespace rig {

namespace {
constexpr std::chrono::milliseconds kStepInterval{20};
/// Longer than the panel blocks a caller by itself. A call that does not return after that waits for the
/// user, for example because a box has come up.
constexpr std::chrono::seconds kCallLimit{15};

QString complaintAbout(const Freeze &freeze)
{
    const QString place = freeze.culprit.isEmpty() ? QString() : QStringLiteral(" in ") + freeze.culprit;
    return QStringLiteral("the GUI thread stood still for %1 ms%2").arg(freeze.time.count()).arg(place);
}
} // namespace

ScenarioPlayer::ScenarioPlayer(Rig &rig, const PanelControls &controls, QObject *parent)
    : QObject(parent)
    , m_stage(std::make_unique<ScenarioStage>(rig, controls))
{
    m_timer.setInterval(kStepInterval);
    connect(&m_timer, &QTimer::timeout, this, &ScenarioPlayer::step);
}

ScenarioPlayer::~ScenarioPlayer() = default;

void ScenarioPlayer::setPanel(QWidget *panel)
{
    m_stage->setPanel(panel);
}

void ScenarioPlayer::play(const Scenario &scenario)
{
    m_scenario = scenario;
    m_index = -1;
    m_sinceStart.start();
    m_timer.start();
    m_guiWatch.start();
}

QString ScenarioPlayer::placeOf(const Statement &statement) const
{
    return QStringLiteral("%1:%2: %3")
        .arg(QFileInfo(m_scenario.file).fileName(), QString::number(statement.line), statement.text);
}

void ScenarioPlayer::begin(int index)
{
    m_index = index;
    m_stage->beginStatement();
    Q_EMIT progressed(placeOf(m_scenario.statements.at(index)));
}

// What came of the statement, whose time may be up.
Outcome ScenarioPlayer::tried(const Statement &statement)
{
    Outcome outcome = (m_stage.get()->*grammar().at(statement.form).act)(statement.words);
    if (const QString remark = m_stage->takeRemark(); !remark.isEmpty())
        Q_EMIT progressed(remark);
    if (outcome.kind == Outcome::NotYet && m_stage->sinceStatement() >= outcome.limit)
        outcome = Outcome::failed(outcome.seen);
    if (outcome.kind != Outcome::Failed || !statement.attempt)
        return outcome;
    Q_EMIT progressed(placeOf(statement) + QStringLiteral(": passed over: ") + outcome.seen);
    return Outcome::done();
}

// One statement a step. A statement may call into the application, which may run an event loop; a timer whose
// slot is still running does not fire in there, so each step has one of its own for that time.
void ScenarioPlayer::step()
{
    if (!m_guiWatch.isWatching())
        return;
    if (m_index < 0)
        begin(0);
    if (m_guiWatch.worst())
        return end(false, QString());
    const int index = m_index;
    const Statement &statement = m_scenario.statements.at(index);
    QTimer meanwhile;
    connect(&meanwhile, &QTimer::timeout, this, [this, index] { stepInside(index); });
    meanwhile.start(kStepInterval);
    const Outcome outcome = tried(statement);
    meanwhile.stop();
    if (m_index != index || !m_timer.isActive())
        return; // it was given up in there
    const bool overtime = std::chrono::milliseconds(m_sinceStart.elapsed()) >= m_stage->scenarioLimit();
    if (outcome.kind == Outcome::Failed)
        end(false, placeOf(statement) + QStringLiteral(": ") + outcome.seen);
    else if (overtime)
        end(false, placeOf(statement) + QStringLiteral(": the scenario takes too long"));
    else if (outcome.kind == Outcome::Done && m_index + 1 < m_scenario.statements.size())
        begin(m_index + 1);
    else if (outcome.kind == Outcome::Done)
        end(true, QString());
}

// While the call of the statement at \a caller has not returned.
void ScenarioPlayer::stepInside(int caller)
{
    if (!m_timer.isActive())
        return;
    if (m_index != caller)
        return step();
    if (m_stage->sinceStatement() < kCallLimit)
        return;
    if (caller + 1 < m_scenario.statements.size())
        begin(caller + 1);
    else
        end(true, QString());
}

void ScenarioPlayer::end(bool passed, const QString &verdict)
{
    m_timer.stop();
    m_guiWatch.stop();
    const auto freeze = m_guiWatch.worst();
    if (!freeze)
        return Q_EMIT finished(passed, verdict);
    // Whatever else is amiss came after it.
    Q_EMIT finished(
        false, placeOf(m_scenario.statements.at(m_index)) + QStringLiteral(": ") + complaintAbout(*freeze));
}

} // namespace rig
