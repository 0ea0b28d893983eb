// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Tour.h"

#include "host/FreezeReport.h"
#include "host/Terminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

Tour::Tour(const Gallery::View &view, const QString &folder)
    : m_view(view)
    , m_holder(view.model == u"R1" ? rig::Model::R1 : rig::Model::R2)
    , m_camera(folder, view)
{
    QDir().mkpath(folder);
    m_log.writeTo(folder + u'/' + view.folder() + u".log"_s);
}

Tour::~Tour()
{
    m_player.reset();
    m_holder.destroy();
}

bool Tour::start(const QString &scenario, QString *error)
{
    const auto loaded = rig::Scenario::load(scenario, error);
    if (!loaded || !m_rig.start(error))
        return false;
    // The tour deletes panels, and each is the last window.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(
        &m_rig.journal(), &rig::Journal::recorded, this,
        [this](const rig::JournalEntry &entry) { m_log.record(entry.source, entry.text); },
        Qt::DirectConnection);
    host::PanelHolder::setEnglish(m_view.language == u"en");
    m_player = std::make_unique<rig::ScenarioPlayer>(m_rig, controls());
    connect(m_player.get(), &rig::ScenarioPlayer::progressed, this,
            [this](const QString &line) { m_log.record(u"scenario"_s, line); });
    connect(m_player.get(), &rig::ScenarioPlayer::finished, this, &Tour::end);
    host::reportFreezes(m_player->guiWatch(), m_log);
    m_player->setPanel(m_holder.create());
    m_player->play(*loaded);
    return true;
}

rig::PanelControls Tour::controls()
{
    rig::PanelControls controls;
    controls.createPanel = [this] { return m_holder.create(); };
    controls.destroyPanel = [this] { m_holder.destroy(); };
    controls.setModel = [this](rig::Model model) { m_holder.setModel(model); };
    controls.takePicture = [this](const QString &screen) { m_camera.take(*m_holder.panel(), screen); };
    return controls;
}

void Tour::end(bool passed, const QString &verdict)
{
    if (!passed)
        host::Terminal::complain(verdict);
    else if (!m_camera.isComplete())
        host::Terminal::complain(u"a picture is missing"_s);
    else
        return QCoreApplication::exit(0);
    QCoreApplication::exit(1);
}
