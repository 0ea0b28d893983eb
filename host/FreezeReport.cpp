// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/FreezeReport.h"

#include "host/CommandLine.h"
#include "host/EventLog.h"
#include "host/Terminal.h"

#include <cstdlib>

namespace host {

namespace {

void tell(EventLog &log, const QString &line)
{
    log.record(QStringLiteral("gui watch"), line);
    Terminal::complain(line);
}

} // namespace

// Both signals come from the watch's own thread.
void reportFreezes(const rig::GuiWatch &watch, EventLog &log)
{
    QObject::connect(
        &watch, &rig::GuiWatch::noticed, &watch,
        [&log](const rig::Freeze &freeze) {
            tell(log, QStringLiteral("the GUI thread stands still:"));
            for (const QString &call : freeze.stack)
                tell(log, QStringLiteral("    ") + call);
        },
        Qt::DirectConnection);
    QObject::connect(
        &watch, &rig::GuiWatch::lost, &watch,
        [&log](const rig::Freeze &freeze) {
            tell(log,
                 QStringLiteral("the GUI thread has stood still for %1 ms and is given up")
                     .arg(freeze.time.count()));
            std::_Exit(kStatusFailed);
        },
        Qt::DirectConnection);
}

} // namespace host
