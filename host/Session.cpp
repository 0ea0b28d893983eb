// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Session.h"

#include "hid/access/DenialWatch.h"
#include "hid/access/DeviceAccess.h"
#include "host/FreezeReport.h"
#include "host/HostWindow.h"
#include "host/PictureFolder.h"
#include "host/Terminal.h"
#include "rig/Rig.h"
#include "rig/ScenarioPlayer.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QNetworkProxy>

namespace host {

namespace {
const QVersionNumber kOnDevice{1, 1, 1};
const QVersionNumber kOnServer{1, 2, 0};
constexpr int kPercentStep = 10;
} // namespace

Session::Session(const Options &options, std::optional<rig::Scenario> scenario)
    : m_options(options)
    , m_scenario(std::move(scenario))
    , m_folders(options.simulate ? Folders::Kind::ForSimulation : Folders::Kind::OfTheUser)
    , m_holder(options.model)
    , m_panels(m_holder, options.model)
{
}

Session::~Session()
{
    // The window would take the panel with it without the holder's knowledge, and the rig must be there to
    // the last.
    m_player.reset();
    m_panels.destroyAll();
    m_window.reset();
}

bool Session::start(QString *error)
{
    if (!m_folders.isValid()) {
        *error = QStringLiteral("there is no room for temporary files");
        return false;
    }
    if (!startRecording(error) || !startSimulation(error))
        return false;
    watchScreens();
    setEnglish(m_options.english);
    if (m_rig && !m_options.headless)
        showWindow();
    m_holder.create();
    watchPermissions();
    if (m_scenario)
        play();
    else if (m_rig)
        layOutDevice();
    return true;
}

int Session::status() const
{
    return m_course == Course::NoScenario || m_course == Course::Passed ? kStatusDone : kStatusFailed;
}

bool Session::startRecording(QString *error)
{
    if (m_options.recordFolder.isEmpty())
        return true;
    m_pictures = std::make_unique<PictureFolder>(m_options.recordFolder);
    if (m_pictures->isWritable() && m_log.writeTo(m_pictures->filePath(QStringLiteral("log.txt")))) {
        tellPlainly(QStringLiteral("pictures and log.txt go to ") + m_pictures->path());
        return true;
    }
    *error = QStringLiteral("cannot write to the folder %1").arg(m_options.recordFolder);
    return false;
}

bool Session::startSimulation(QString *error)
{
    if (!m_options.simulate)
        return true;
    m_rig = std::make_unique<rig::Rig>();
    if (!m_rig->start(error, m_options.usb ? rig::Bus::Usb : rig::Bus::Installed))
        return false;
    useServer();
    watchRig();
    m_rig->device().setModel(m_options.model);
    for (const rig::Fault fault : m_options.faults)
        m_rig->faults().arm(fault);
    return true;
}

// The address of the panel's own server is fixed when it is built. What it asks for goes through a proxy, and
// a server takes such a request as well.
void Session::useServer()
{
    if (m_options.server.isEmpty())
        return;
    const QStringList place = m_options.server.split(u':');
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, place.first(), place.last().toUShort()));
}

// An upgrade of both firmwares is waiting for the click; the OTG cable is left to the tester.
void Session::layOutDevice()
{
    for (const rig::Chip chip : {rig::Chip::Pc, rig::Chip::Otg}) {
        m_rig->device().setVersion(chip, kOnDevice);
        m_rig->server().setVersion(chip, kOnServer);
    }
    m_rig->device().plug(rig::Chip::Pc);
}

void Session::watchRig()
{
    // Several threads write to the journal, and each of them may call the log.
    connect(
        &m_rig->journal(), &rig::Journal::recorded, this,
        [this](const rig::JournalEntry &entry) { m_log.record(entry.source, entry.text); },
        Qt::DirectConnection);
}

void Session::watchScreens()
{
    connect(&m_holder, &PanelHolder::panelChanged, this, [this](QWidget *panel) {
        m_screens.setPanel(panel);
        if (m_pictures)
            m_pictures->setPanel(panel);
    });
    connect(&m_holder, &PanelHolder::versionsCompared, this, [this](const QString &version, bool needed) {
        m_log.record(
            QStringLiteral("host"),
            QStringLiteral("compared: %1, %2")
                .arg(version,
                     needed ? QStringLiteral("upgrade needed") : QStringLiteral("no upgrade needed")));
    });
    connect(&m_screens, &ScreenWatch::screenShown, this, [this](const QString &screen) {
        m_log.record(QStringLiteral("screen"), screen);
        tellStep(QStringLiteral("screen: ") + screen);
        if (m_pictures)
            m_pictures->screenShown(screen);
    });
    connect(&m_panels, &PanelSet::screenShown, this, [this](const QString &name, const QString &screen) {
        m_log.record(QStringLiteral("screen"), name + QStringLiteral(": ") + screen);
    });
    connect(&m_screens, &ScreenWatch::percentShown, this, [this](int percent) {
        if (percent % kPercentStep == 0)
            tellStep(QStringLiteral("%1 %").arg(percent));
    });
}

// The panel finds such a device, cannot open it, and shows nothing about it.
void Session::watchPermissions()
{
    if (m_options.simulate && !m_options.usb)
        return;
    m_denials = std::make_unique<DenialWatch>(DeviceAccess::isDenied,
                                              [](const QString &hint) { Terminal::complain(hint); });
}

void Session::showWindow()
{
    m_window = std::make_unique<HostWindow>(*m_rig, m_holder, m_log);
    m_holder.setFrame(m_window->panelFrame());
    m_window->setEnglish(m_options.english);
    connect(m_window.get(), &HostWindow::languageChosen, this, &Session::setEnglish);
    m_window->show();
}

void Session::play()
{
    m_course = Course::Playing;
    // Without a window around it the panel is the last one, and scenarios delete it.
    QGuiApplication::setQuitOnLastWindowClosed(m_window != nullptr);
    m_player = std::make_unique<rig::ScenarioPlayer>(*m_rig, panelControls());
    connect(m_player.get(), &rig::ScenarioPlayer::progressed, this, &Session::tell);
    connect(m_player.get(), &rig::ScenarioPlayer::finished, this, &Session::end);
    reportFreezes(m_player->guiWatch(), m_log);
    m_player->setPanel(m_holder.panel());
    m_player->play(*m_scenario);
}

rig::PanelControls Session::panelControls()
{
    rig::PanelControls controls;
    controls.createPanel = [this] { return m_panels.chosen().create(); };
    controls.destroyPanel = [this] { m_panels.chosen().destroy(); };
    controls.setModel = [this](rig::Model model) { m_panels.chosen().setModel(model); };
    controls.setLanguage = [this](bool english) { setEnglish(english); };
    controls.recover = [this] { m_panels.chosen().startRecovery(); };
    controls.takePicture = [this](const QString &name) {
        if (m_pictures)
            m_pictures->save(name);
    };
    controls.choosePanel = [this](const QString &name) {
        m_panels.choose(name);
        return m_panels.chosen().panel();
    };
    controls.destroyPanels = [this] { m_panels.destroyAll(); };
    controls.destroyPanelLater
        = [this](std::chrono::milliseconds time) { m_panels.chosen().destroyAfter(time); };
    return controls;
}

void Session::setEnglish(bool english)
{
    PanelHolder::setEnglish(english);
    if (m_window)
        m_window->setEnglish(english);
}

// Statements go into the log alone; what the scenario says is meant for people.
void Session::tell(const QString &line)
{
    m_log.record(QStringLiteral("scenario"), line);
    const bool isStatement = line.startsWith(QFileInfo(m_scenario->file).fileName() + QLatin1Char(':'));
    if (!isStatement)
        tellPlainly(line);
}

void Session::tellStep(const QString &line)
{
    tellPlainly(m_log.now() + QStringLiteral(" s  ") + line);
}

void Session::tellPlainly(const QString &line)
{
    if (m_options.headless)
        Terminal::print(line);
}

void Session::end(bool passed, const QString &verdict)
{
    m_course = passed ? Course::Passed : Course::Failed;
    m_log.record(QStringLiteral("scenario"),
                 passed ? QStringLiteral("passed") : QStringLiteral("failed: ") + verdict);
    if (!passed)
        Terminal::complain(verdict);
    QCoreApplication::quit();
}

} // namespace host
