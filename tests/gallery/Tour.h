// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "host/EventLog.h"
#include "host/Folders.h"
#include "host/PanelHolder.h"
#include "rig/Rig.h"
#include "rig/ScenarioPlayer.h"
#include "tests/gallery/Camera.h"

#include <QObject>

#include <memory>

/// One tour through all screens of a panel for one model in one language, at the scale of this process.
/// Everything is what quillon-host uses: the shipping library, the rig, a scenario.
class Tour : public QObject {
    Q_OBJECT

public:
    Tour(const Gallery::View &view, const QString &folder);
    ~Tour() override;

    /// Plays \a scenario; the application quits with 0 when every screen was pictured. False, with one line
    /// in \a error, when it cannot be played.
    bool start(const QString &scenario, QString *error);

private:
    rig::PanelControls controls();
    void end(bool passed, const QString &verdict);

    host::Folders m_folders{host::Folders::Kind::ForSimulation};
    host::EventLog m_log; // keeps what the panel says off the terminal
    rig::Rig m_rig;
    Gallery::View m_view;
    host::PanelHolder m_holder;
    Camera m_camera;
    std::unique_ptr<rig::ScenarioPlayer> m_player;
};
