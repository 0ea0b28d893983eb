// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/ScenarioPlayer.h"

#include <QSignalSpy>

#include <functional>

/// A scenario that gives the GUI thread something to do, and what the watch made of it.
struct WatchedScenario {
    QString verdict; ///< empty: passed
    QStringList stack; ///< as told while it lasted; empty: nothing was noticed

    static WatchedScenario with(const std::function<void()> &task)
    {
        WatchedScenario result;
        rig::Rig rig;
        rig::PanelControls controls;
        controls.recover = task;
        rig::ScenarioPlayer player(rig, controls);
        QObject::connect(
            &player.guiWatch(), &rig::GuiWatch::noticed, &player,
            [&result](const rig::Freeze &freeze) { result.stack = freeze.stack; }, Qt::DirectConnection);
        QSignalSpy finished(&player, &rig::ScenarioPlayer::finished);
        QString error;
        player.play(*rig::Scenario::parse(QStringLiteral("recover"), QStringLiteral("x.scn"), &error));
        if (!finished.wait(kPatience))
            result.verdict = QStringLiteral("it did not end");
        else
            result.verdict = finished.first().at(1).toString();
        return result;
    }

private:
    static constexpr int kPatience = 200000; // of a clock that may be sped up
};
