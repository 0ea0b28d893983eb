// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/PanelControls.h"
#include "rig/Rig.h"
#include "rig/Scenario.h"
#include "rig/watch/GuiWatch.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>

class QWidget;

namespace rig {

class ScenarioStage;
struct Outcome;

/// Plays a scenario against a rig and a panel that it knows only as a widget with named children. Driven by
/// timers: no call waits, so it goes on while the panel blocks in an event loop of its own. One statement at
/// a time. A GUI thread that stands still fails every scenario. GUI thread.
class ScenarioPlayer : public QObject {
    Q_OBJECT

public:
    ScenarioPlayer(Rig &rig, const PanelControls &controls, QObject *parent = nullptr);
    ~ScenarioPlayer() override;

    void setPanel(QWidget *panel); ///< may be destroyed at any time
    /// Starts \a scenario once the event loop runs. One scenario per player.
    void play(const Scenario &scenario);
    bool isPlaying() const { return m_timer.isActive(); }
    const GuiWatch &guiWatch() const { return m_guiWatch; } ///< its signals tell of a freeze while it lasts

Q_SIGNALS:
    void progressed(const QString &line); ///< "FILE:LINE: statement" as each one begins, and what "say" says
    /// Emitted once: \a passed with an empty \a verdict, or "FILE:LINE: statement: what was seen instead".
    void finished(bool passed, const QString &verdict);

private:
    void step();
    void stepInside(int caller);
    Outcome tried(const Statement &statement);
    void begin(int index);
    void end(bool passed, const QString &verdict);
    QString placeOf(const Statement &statement) const;

    std::unique_ptr<ScenarioStage> m_stage;
    GuiWatch m_guiWatch;
    Scenario m_scenario;
    QTimer m_timer;
    QElapsedTimer m_sinceStart;
    int m_index = -1;
};

} // namespace rig
