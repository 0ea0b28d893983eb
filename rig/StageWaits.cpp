// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What scenarios wait for, and the looks at rig and panel that waiting and expecting share.
#include "rig/ScenarioStage.h"

#include "rig/ScenarioWords.h"
#include "rig/ScreenRecognizer.h"

#include <QMessageBox>
#include <QProgressBar>

#include <algorithm>

namespace rig {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kWaitLimit = std::chrono::seconds(30);

Outcome until(bool reached, const QString &seen, const QString &limit)
{
    return reached ? Outcome::done() : Outcome::notYet(seen, durationFrom(limit).value_or(kWaitLimit));
}

} // namespace

QWidget *ScenarioStage::child(const QString &name) const
{
    return m_panel ? m_panel->findChild<QWidget *>(name) : nullptr;
}

QWidget *ScenarioStage::warning() const
{
    const QList<QMessageBox *> boxes
        = m_panel ? m_panel->findChildren<QMessageBox *>() : QList<QMessageBox *>();
    const auto shown
        = std::find_if(boxes.begin(), boxes.end(), [](QMessageBox *box) { return box->isVisible(); });
    return shown == boxes.end() ? nullptr : *shown;
}

int ScenarioStage::barValue() const
{
    const auto *bar = qobject_cast<QProgressBar *>(child(QStringLiteral("m_progressBar")));
    return bar ? bar->value() : -1;
}

QString ScenarioStage::screen() const
{
    if (!m_panel)
        return QStringLiteral("no panel");
    const QString name = recognizeScreen(*m_panel);
    return name.isEmpty() ? QStringLiteral("no known screen") : name;
}

QString ScenarioStage::firmwareOf(Chip chip) const
{
    switch (m_rig.device().state(chip)) {
    case ChipState::Running:
        return m_rig.device().runningVersion(chip).toString();
    case ChipState::BootLoader:
        return QStringLiteral("bricked");
    case ChipState::Restarting:
        break;
    }
    return QStringLiteral("restarting");
}

Outcome ScenarioStage::pause(Words words)
{
    const milliseconds time = *durationFrom(words.at(0));
    return sinceStatement() >= time ? Outcome::done() : Outcome::notYet({}, time * 2);
}

Outcome ScenarioStage::waitScreen(Words words)
{
    return until(screen() == words.at(0), screen(), words.at(1));
}

Outcome ScenarioStage::waitBar(Words words)
{
    return until(barValue() >= words.at(0).toInt(), QStringLiteral("bar at %1").arg(barValue()), words.at(1));
}

Outcome ScenarioStage::waitDevice(Words words)
{
    const QString firmware = firmwareOf(*chipNamed(words.at(0)));
    return until(firmware == words.at(1), firmware, words.at(2));
}

Outcome ScenarioStage::waitRead(Words words)
{
    const auto read = m_rig.device().lastRead(*chipNamed(words.at(0)));
    const QString version = read ? read->version.toString() : QStringLiteral("never read");
    return until(version == words.at(1), version, words.at(2));
}

Outcome ScenarioStage::waitInterface(Words words)
{
    QStringList present;
    for (const BusInterface &face : m_rig.device().interfaces())
        present.append(QStringLiteral("%1").arg(face.productId, 4, 16, QLatin1Char('0')));
    return until(present.contains(words.at(0)), QStringLiteral("on the bus: ") + present.join(u' '),
                 words.at(1));
}

Outcome ScenarioStage::waitFlashing(Words words)
{
    const QList<ToolRun> runs = m_rig.bootLoader().runs();
    const bool flashing = !runs.isEmpty() && runs.last().running && nameOf(runs.last().chip) == words.at(0);
    return until(flashing, QStringLiteral("tool starts so far: %1").arg(runs.size()), words.at(1));
}

Outcome ScenarioStage::waitToolEnded(Words words)
{
    return until(!m_rig.bootLoader().isFlashing(), QStringLiteral("a tool is running"), words.at(0));
}

Outcome ScenarioStage::waitDownload(Words words)
{
    const QStringList sofar = downloads();
    return until(sofar.contains(words.at(0)), QStringLiteral("asked for so far: ") + sofar.join(u' '),
                 words.at(1));
}

Outcome ScenarioStage::waitWarning(Words words)
{
    return until(warning(), QStringLiteral("no warning box"), words.at(0));
}

Outcome ScenarioStage::holdScreen(Words words)
{
    const milliseconds time = *durationFrom(words.at(1));
    if (screen() != words.at(0))
        return Outcome::failed(QStringLiteral("%1 after %2 ms").arg(screen()).arg(sinceStatement().count()));
    return sinceStatement() >= time ? Outcome::done() : Outcome::notYet(screen(), time * 2);
}

} // namespace rig
