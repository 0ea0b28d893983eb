// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "host/CommandLine.h"
#include "host/EventLog.h"
#include "host/Folders.h"
#include "host/PanelHolder.h"
#include "host/PanelSet.h"
#include "host/ScreenWatch.h"
#include "rig/Scenario.h"

#include <QObject>

#include <memory>
#include <optional>

class DenialWatch;

namespace rig {
class Rig;
class ScenarioPlayer;
struct PanelControls;
} // namespace rig

namespace host {

class HostWindow;
class PictureFolder;

/// One run of quillon-host, from the first window to the exit status. GUI thread.
class Session : public QObject {
    Q_OBJECT

public:
    /// \a scenario is the one that the options name, already read.
    Session(const Options &options, std::optional<rig::Scenario> scenario);
    ~Session() override;

    /// Makes everything and shows it. False, with one line in \a error, when something could not be had.
    bool start(QString *error);

    /// What the process ends with once the event loop has returned.
    int status() const;

private:
    bool startRecording(QString *error);
    bool startSimulation(QString *error);
    void useServer();
    void layOutDevice();
    void watchRig();
    void watchScreens();
    void watchPermissions();
    void showWindow();
    void play();
    void setEnglish(bool english);
    void setModel(rig::Model model);
    rig::PanelControls panelControls();
    void tell(const QString &line);
    void tellStep(const QString &line);
    void tellPlainly(const QString &line);
    void end(bool passed, const QString &verdict);

    enum class Course { NoScenario, Playing, Passed, Failed };

    Options m_options;
    std::optional<rig::Scenario> m_scenario;
    Course m_course = Course::NoScenario;
    EventLog m_log;
    Folders m_folders;
    std::unique_ptr<PictureFolder> m_pictures;
    std::unique_ptr<rig::Rig> m_rig; // outlives the panel
    PanelHolder m_holder;
    PanelSet m_panels; // beside that one, for scenarios
    ScreenWatch m_screens;
    std::unique_ptr<HostWindow> m_window;
    std::unique_ptr<DenialWatch> m_denials;
    std::unique_ptr<rig::ScenarioPlayer> m_player;
};

} // namespace host
