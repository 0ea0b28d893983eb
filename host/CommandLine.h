// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/options/CommandLine.h"
#include "rig/Fault.h"
#include "rig/Identity.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace host {

/// What quillon-host was asked to do.
struct Options {
    rig::Model model = rig::Model::R2;
    bool english = false;
    bool simulate = false;
    bool usb = false; ///< the simulated device is on this machine's USB
    bool headless = false;
    QString server; ///< "HOST:PORT" of one that takes the simulated one's place; empty: none does
    QString scenario; ///< a file; empty: none
    QString recordFolder; ///< empty: nothing is recorded
    QList<rig::Fault> faults; ///< armed from the start
};

using CommandLine = options::CommandLine<Options>;

/// The exit statuses of quillon-host.
constexpr int kStatusDone = 0; ///< the scenario reached its end, or the window was closed
constexpr int kStatusFailed = 1; ///< the scenario failed or was cut off
constexpr int kStatusWrong = 2; ///< a bad option, a missing or malformed scenario, no display

/// Reads \a arguments, the program's name first. Needs no application object: the platform is chosen by what
/// is found here.
CommandLine readCommandLine(const QStringList &arguments);

} // namespace host
