// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Belongings.h"
#include "rig/PanelControls.h"
#include "rig/Rig.h"
#include "rig/Weights.h"

#include <QElapsedTimer>
#include <QMap>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QWidget>

#include <chrono>
#include <memory>
#include <optional>

class QProcess;

namespace rig {

/// What came of trying a statement.
struct Outcome {
    enum Kind { Done, NotYet, Failed };

    Kind kind = Done;
    QString seen; ///< what is the case instead
    std::chrono::milliseconds limit{0}; ///< NotYet: gives up after so long

    static Outcome done() { return {}; }
    static Outcome notYet(const QString &seen, std::chrono::milliseconds limit)
    {
        return {NotYet, seen, limit};
    }
    static Outcome failed(const QString &seen) { return {Failed, seen, {}}; }
};

/// The statements' doing: each act looks at the words that fill its form's gaps, does or checks one thing,
/// and returns at once; one that is not yet done is called again. GUI thread.
class ScenarioStage {
public:
    ScenarioStage(Rig &rig, const PanelControls &controls);
    ~ScenarioStage();

    void setPanel(QWidget *panel) { m_panel = panel; }
    void beginStatement() { m_sinceStatement.start(); }
    std::chrono::milliseconds sinceStatement() const
    {
        return std::chrono::milliseconds(m_sinceStatement.elapsed());
    }
    std::chrono::milliseconds scenarioLimit() const { return m_scenarioLimit; }
    QString takeRemark() { return std::exchange(m_remark, {}); } ///< what "say" said

    using Words = const QStringList &;

    // StageActions.cpp
    Outcome device(Words words);
    Outcome plug(Words words);
    Outcome unplug(Words words);
    Outcome brick(Words words);
    Outcome server(Words words);
    Outcome fault(Words words);
    Outcome clearFault(Words words);
    Outcome clearFaults(Words words);
    Outcome model(Words words);
    Outcome language(Words words);
    Outcome click(Words words);
    Outcome recover(Words words);
    Outcome createPanel(Words words);
    Outcome destroyPanel(Words words);
    Outcome dismissWarning(Words words);
    Outcome picture(Words words);
    Outcome forget(Words words);
    Outcome say(Words words);
    Outcome limitScenario(Words words);

    // StageWaits.cpp
    Outcome pause(Words words);
    Outcome waitScreen(Words words);
    Outcome waitBar(Words words);
    Outcome waitDevice(Words words);
    Outcome waitRead(Words words);
    Outcome waitInterface(Words words);
    Outcome waitFlashing(Words words);
    Outcome waitToolEnded(Words words);
    Outcome waitDownload(Words words);
    Outcome waitWarning(Words words);
    Outcome holdScreen(Words words);

    // StageExpectations.cpp
    Outcome expectScreen(Words words);
    Outcome expectBar(Words words);
    Outcome expectText(Words words);
    Outcome expectVisible(Words words);
    Outcome expectHidden(Words words);
    Outcome expectDevice(Words words);
    Outcome expectFlash(Words words);
    Outcome expectNoDownloads(Words words);
    Outcome expectDownloads(Words words);
    Outcome expectNothingFlashed(Words words);
    Outcome expectFlashed(Words words);
    Outcome expectTool(Words words);
    Outcome expectToolInDfu(Words words);
    Outcome expectToolCount(Words words);
    Outcome expectNoQueries(Words words);
    Outcome expectDelay(Words words);

    // StagePanels.cpp
    Outcome choosePanel(Words words);
    Outcome destroyPanels(Words words);
    Outcome destroyPanelLater(Words words);

    // StageCommands.cpp
    Outcome runCommand(Words words);

    // StageBelongings.cpp
    Outcome mark(Words words);
    Outcome expectNothingLeft(Words words);

    // StageWeights.cpp
    Outcome weigh(Words words);
    Outcome expectGrowth(Words words);

private:
    Outcome control(const std::function<void()> &function, const char *name);
    QWidget *child(const QString &name) const; ///< of the panel; null when there is none
    QWidget *warning() const;
    int barValue() const; ///< below 0: no bar
    QString screen() const;
    QString firmwareOf(Chip chip) const;
    QStringList downloads() const;
    QStringList flashed() const;
    QString lastToolCommand() const;
    QByteArray lastServed(Chip chip) const; ///< the digest of its image; empty: none was asked for
    QList<std::chrono::milliseconds>
    timesOf(const QString &event) const; ///< every time it happened, in order
    void rememberSent(); ///< what the server sent for images, before its list is dropped
    bool maySpare(const QString &file) const; ///< it stays by design

    Rig &m_rig;
    PanelControls m_controls;
    QPointer<QWidget> m_panel;
    QElapsedTimer m_sinceStatement;
    std::chrono::milliseconds m_scenarioLimit;
    QString m_remark;
    std::optional<Belongings> m_mark;
    std::chrono::milliseconds m_markedAt{0}; // since the statement began, when they were last seen to change
    QSet<QByteArray> m_sent; // digests of what downloads brought
    QMap<QString, Weights> m_weights; // by the name they were noted under
    Weights m_lastWeights;
    std::chrono::milliseconds m_weighedAt{0}; // since the statement began, when they were last seen to change
    std::unique_ptr<QProcess> m_command; // while one runs
};

using StageAct = Outcome (ScenarioStage::*)(ScenarioStage::Words words);

} // namespace rig
