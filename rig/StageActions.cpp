// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What scenarios do: to the device, the server and the faults directly, to the panel with the mouse or
// through the application that holds it.
#include "rig/ScenarioStage.h"

#include "rig/ScenarioWords.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QMessageBox>
#include <QMouseEvent>
#include <QProcess>

namespace rig {

namespace {

constexpr std::chrono::milliseconds kScenarioLimit = std::chrono::minutes(10);

struct Button {
    const char *name;
    const char *widget;
};

// The bar is the button for both; a person sees another text on it.
constexpr Button kButtons[]{
    {"upgrade", "m_progressBar"}, {"retry", "m_progressBar"}, {"close", "m_closeBtn"}};

Chip chipIn(const QString &word)
{
    return chipNamed(word).value_or(Chip::Pc);
}

void setFirmware(SimulatedDevice &device, Chip chip, const QString &firmware)
{
    if (firmware == u"bricked")
        device.brick(chip);
    else
        device.setVersion(chip, QVersionNumber::fromString(firmware));
}

void postMouse(QWidget *widget, QEvent::Type type, const QPoint &at)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
    QCoreApplication::postEvent(
        widget, new QMouseEvent(type, at, widget->mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier));
}

// Posted, as the window system does it: what the press sets off may run an event loop of its own. It meets
// the child that lies under the pointer, if one does.
void click(QWidget *widget)
{
    QWidget *child = widget->childAt(widget->rect().center());
    QWidget *target = child ? child : widget;
    const QPoint at = target->mapFrom(widget, widget->rect().center());
    postMouse(target, QEvent::MouseButtonPress, at);
    postMouse(target, QEvent::MouseButtonRelease, at);
}

} // namespace

ScenarioStage::ScenarioStage(Rig &rig, const PanelControls &controls)
    : m_rig(rig)
    , m_controls(controls)
    , m_scenarioLimit(kScenarioLimit)
{
}

Outcome ScenarioStage::device(Words words)
{
    m_rig.device().setModel(modelNamed(words.at(0)).value_or(Model::R2));
    setFirmware(m_rig.device(), Chip::Pc, words.at(1));
    setFirmware(m_rig.device(), Chip::Otg, words.at(2));
    return Outcome::done();
}

Outcome ScenarioStage::plug(Words words)
{
    m_rig.device().plug(chipIn(words.at(0)));
    return Outcome::done();
}

Outcome ScenarioStage::unplug(Words words)
{
    m_rig.device().unplug(chipIn(words.at(0)));
    return Outcome::done();
}

Outcome ScenarioStage::brick(Words words)
{
    m_rig.device().brick(chipIn(words.at(0)));
    return Outcome::done();
}

Outcome ScenarioStage::server(Words words)
{
    m_rig.server().setVersion(Chip::Pc, QVersionNumber::fromString(words.at(0)));
    m_rig.server().setVersion(Chip::Otg, QVersionNumber::fromString(words.at(1)));
    return Outcome::done();
}

Outcome ScenarioStage::fault(Words words)
{
    FaultScope scope;
    scope.chip = chipNamed(words.at(1));
    if (!words.at(2).isEmpty())
        scope.requests = words.at(2) == u"queries" ? RequestKind::VersionQuery : RequestKind::Download;
    scope.times = timesFrom(words.at(3)).value_or(0);
    m_rig.faults().arm(*faultNamed(words.at(0)), scope);
    return Outcome::done();
}

Outcome ScenarioStage::clearFault(Words words)
{
    m_rig.faults().clear(*faultNamed(words.at(0)));
    return Outcome::done();
}

Outcome ScenarioStage::clearFaults(Words)
{
    m_rig.faults().clearAll();
    return Outcome::done();
}

Outcome ScenarioStage::control(const std::function<void()> &function, const char *name)
{
    if (!function)
        return Outcome::failed(QStringLiteral("this application cannot ") + QLatin1StringView(name));
    function();
    return Outcome::done();
}

Outcome ScenarioStage::model(Words words)
{
    const auto set = m_controls.setModel;
    const Model model = modelNamed(words.at(0)).value_or(Model::R2);
    return control(set ? std::function<void()>([=] { set(model); }) : nullptr, "set the model");
}

Outcome ScenarioStage::language(Words words)
{
    const auto set = m_controls.setLanguage;
    const bool english = words.at(0) == u"en";
    return control(set ? std::function<void()>([=] { set(english); }) : nullptr, "set the language");
}

Outcome ScenarioStage::click(Words words)
{
    for (const Button &button : kButtons) {
        if (words.at(0) != QLatin1StringView(button.name))
            continue;
        QWidget *widget = child(QLatin1StringView(button.widget));
        if (!widget || !widget->isVisible())
            return Outcome::failed(QStringLiteral("there is no such button"));
        rig::click(widget);
    }
    return Outcome::done();
}

Outcome ScenarioStage::recover(Words)
{
    return control(m_controls.recover, "start the recovery");
}

Outcome ScenarioStage::createPanel(Words)
{
    if (!m_controls.createPanel)
        return Outcome::failed(QStringLiteral("this application cannot make a panel"));
    m_panel = m_controls.createPanel();
    return m_panel ? Outcome::done() : Outcome::failed(QStringLiteral("no panel was made"));
}

Outcome ScenarioStage::destroyPanel(Words)
{
    const Outcome outcome = control(m_controls.destroyPanel, "delete the panel");
    if (outcome.kind == Outcome::Done && m_panel)
        return Outcome::failed(QStringLiteral("the panel is still there"));
    return outcome;
}

Outcome ScenarioStage::dismissWarning(Words)
{
    auto *box = qobject_cast<QMessageBox *>(warning());
    if (!box || box->buttons().isEmpty())
        return Outcome::failed(QStringLiteral("no warning box is up"));
    rig::click(box->buttons().first());
    return Outcome::done();
}

Outcome ScenarioStage::picture(Words words)
{
    const auto take = m_controls.takePicture;
    const QString &name = words.at(0);
    return control(take ? std::function<void()>([=] { take(name); }) : nullptr, "take a picture");
}

Outcome ScenarioStage::forget(Words)
{
    rememberSent();
    m_rig.server().forgetRequests();
    m_rig.bootLoader().forgetRuns();
    return Outcome::done();
}

Outcome ScenarioStage::say(Words words)
{
    m_remark = words.at(0);
    return Outcome::done();
}

Outcome ScenarioStage::limitScenario(Words words)
{
    m_scenarioLimit = durationFrom(words.at(0)).value_or(kScenarioLimit);
    return Outcome::done();
}

} // namespace rig
