// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Which of several panels a scenario is about, and panels that go at a moment of nobody's choosing.
#include "rig/ScenarioStage.h"
#include "rig/ScenarioWords.h"

namespace rig {

namespace {
const QString kMain = QStringLiteral("main");
} // namespace

Outcome ScenarioStage::choosePanel(Words words)
{
    if (!m_controls.choosePanel)
        return Outcome::failed(QStringLiteral("this application cannot have several panels"));
    m_panel = m_controls.choosePanel(words.at(0));
    return Outcome::done();
}

Outcome ScenarioStage::destroyPanels(Words)
{
    const Outcome outcome = control(m_controls.destroyPanels, "delete the panels");
    return outcome.kind == Outcome::Done ? choosePanel({kMain}) : outcome;
}

// By then the panel may be anywhere in an event loop of its own, and it need not be the one that is looked
// at.
Outcome ScenarioStage::destroyPanelLater(Words words)
{
    const auto destroy = m_controls.destroyPanelLater;
    const std::chrono::milliseconds time = *durationFrom(words.at(0));
    return control(destroy ? std::function<void()>([=] { destroy(time); }) : nullptr,
                   "delete the panel later");
}

} // namespace rig
