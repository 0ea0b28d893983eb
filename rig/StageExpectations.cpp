// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What scenarios expect to be the case at once.
#include "rig/ScenarioStage.h"

#include "rig/FirmwareImage.h"
#include "rig/FlashContents.h"
#include "rig/ScenarioWords.h"

#include <QLabel>
#include <QTextEdit>

#include <algorithm>

namespace rig {

using std::chrono::milliseconds;

namespace {

Outcome require(bool holds, const QString &seen)
{
    return holds ? Outcome::done() : Outcome::failed(seen);
}

Outcome compare(const QString &seen, const QString &wanted)
{
    return require(seen == wanted, seen.isEmpty() ? QStringLiteral("nothing") : seen);
}

QString textOf(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *edit = qobject_cast<const QTextEdit *>(widget))
        return edit->toPlainText();
    return QStringLiteral("no text");
}

} // namespace

QStringList ScenarioStage::downloads() const
{
    QStringList chips;
    for (const ServedRequest &request : m_rig.server().requests()) {
        if (request.kind == RequestKind::Download)
            chips.append(nameOf(request.chip));
    }
    return chips;
}

QStringList ScenarioStage::flashed() const
{
    QStringList chips;
    for (const ToolRun &run : m_rig.bootLoader().runs()) {
        if (run.finished)
            chips.append(nameOf(run.chip));
    }
    return chips;
}

QByteArray ScenarioStage::lastServed(Chip chip) const
{
    QByteArray served;
    for (const ServedRequest &request : m_rig.server().requests()) {
        if (request.kind == RequestKind::Download && request.chip == chip)
            served = request.sha256;
    }
    return served;
}

QString ScenarioStage::lastToolCommand() const
{
    const QList<ToolRun> runs = m_rig.bootLoader().runs();
    return runs.isEmpty() ? QStringLiteral("no tool was started") : runs.last().arguments.mid(1).join(u' ');
}

QList<milliseconds> ScenarioStage::timesOf(const QString &event) const
{
    const Chip chip = *chipNamed(event.section(u'-', 0, 0));
    const QString what = event.section(u'-', 1);
    QList<milliseconds> times;
    for (const ServedRequest &request : m_rig.server().requests()) {
        if (what == u"image" && request.kind == RequestKind::Download && request.chip == chip)
            times.append(request.answered);
    }
    for (const ToolRun &run : m_rig.bootLoader().runs()) {
        if ((what == u"tool" || what == u"ended") && run.chip == chip)
            times.append(what == u"tool" ? run.started : run.ended);
    }
    for (const BusInterface &face : m_rig.device().appearances()) {
        if (what == u"appeared" && face.chip == chip)
            times.append(face.since);
    }
    if (const auto read = m_rig.device().lastRead(chip); read && what == u"read")
        times.append(read->at);
    return times;
}

Outcome ScenarioStage::expectScreen(Words words)
{
    return compare(screen(), words.at(0));
}

Outcome ScenarioStage::expectBar(Words words)
{
    return compare(QString::number(barValue()), words.at(0));
}

Outcome ScenarioStage::expectText(Words words)
{
    return compare(textOf(child(words.at(0))), words.at(1));
}

Outcome ScenarioStage::expectVisible(Words words)
{
    const QWidget *widget = child(words.at(0));
    return require(widget && widget->isVisible(), QStringLiteral("it cannot be seen"));
}

Outcome ScenarioStage::expectHidden(Words words)
{
    const QWidget *widget = child(words.at(0));
    if (!widget)
        return Outcome::failed(QStringLiteral("there is no such widget"));
    return require(!widget->isVisible(), QStringLiteral("it can be seen"));
}

Outcome ScenarioStage::expectDevice(Words words)
{
    return compare(firmwareOf(*chipNamed(words.at(0))), words.at(1));
}

Outcome ScenarioStage::expectFlash(Words words)
{
    const SimulatedDevice &device = m_rig.device();
    const Chip chip = *chipNamed(words.at(0));
    const QByteArray flash = device.flash(chip);
    if (words.at(1) != QLatin1StringView(kServed))
        return compare(contentsOf(flash, identityOf(device.model(), chip)), words.at(1));
    const QByteArray served = lastServed(chip);
    const QByteArray held = sha256(flash);
    return require(
        !served.isEmpty() && held == served,
        QStringLiteral("served %1, flash %2").arg(QString::fromLatin1(served), QString::fromLatin1(held)));
}

Outcome ScenarioStage::expectNoDownloads(Words)
{
    return compare(downloads().join(u' '), QString());
}

Outcome ScenarioStage::expectDownloads(Words words)
{
    return compare(downloads().join(u' '), words.at(0));
}

Outcome ScenarioStage::expectNoQueries(Words)
{
    const QList<ServedRequest> requests = m_rig.server().requests();
    const auto queries = std::count_if(requests.begin(), requests.end(), [](const ServedRequest &request) {
        return request.kind == RequestKind::VersionQuery;
    });
    return require(queries == 0, QStringLiteral("%1 queries").arg(queries));
}

Outcome ScenarioStage::expectNothingFlashed(Words)
{
    return compare(flashed().join(u' '), QString());
}

Outcome ScenarioStage::expectFlashed(Words words)
{
    return compare(flashed().join(u' '), words.at(0));
}

Outcome ScenarioStage::expectTool(Words words)
{
    return compare(lastToolCommand(), QStringLiteral("--pid ") + words.at(0));
}

Outcome ScenarioStage::expectToolInDfu(Words words)
{
    return compare(lastToolCommand(), QStringLiteral("--pid %1 --already-in-dfu").arg(words.at(0)));
}

Outcome ScenarioStage::expectToolCount(Words words)
{
    return compare(QString::number(m_rig.bootLoader().runs().size()), words.at(0));
}

// The latest of the later events counts, and the latest of the earlier ones before that.
Outcome ScenarioStage::expectDelay(Words words)
{
    const milliseconds wanted = *durationFrom(words.at(1));
    const milliseconds tolerance = *durationFrom(words.at(3));
    const QList<milliseconds> later = timesOf(words.at(0));
    std::optional<milliseconds> gap;
    for (const milliseconds earlier : timesOf(words.at(2))) {
        if (!later.isEmpty() && earlier.count() >= 0 && earlier <= later.last())
            gap = later.last() - earlier;
    }
    if (!gap)
        return Outcome::failed(QStringLiteral("these two have not happened in this order"));
    return require(*gap >= wanted - tolerance && *gap <= wanted + tolerance,
                   QStringLiteral("%1 ms").arg(gap->count()));
}

} // namespace rig
