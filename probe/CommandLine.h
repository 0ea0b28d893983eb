// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/options/CommandLine.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace probe {

/// The exit statuses of quillon-probe.
constexpr int kStatusDone = 0;
constexpr int kStatusNoDevice = 1; ///< no device, or none that answers
constexpr int kStatusWrong = 2; ///< a bad option, a file that cannot be read or written
constexpr int kStatusDenied = 3; ///< a device is there, and the user has no permission to open it

/// What quillon-probe was asked to do.
struct Options {
    enum class Command { List, Versions, Watch, Read, Trace };

    Command command = Command::List;
    quint16 address = 0; ///< Read
    int count = 1; ///< Read: at least 1, and not beyond the last address
    bool json = false;
    bool listen = false; ///< Trace: ask the device nothing
    std::optional<std::chrono::milliseconds> duration; ///< Watch and Trace; none: until interrupted
    QString recordFile; ///< empty: nothing is recorded
    QString replayFile; ///< empty: the system's own bus
};

using CommandLine = options::CommandLine<Options>;

/// Reads \a arguments, the program's name first.
CommandLine readCommandLine(const QStringList &arguments);

} // namespace probe
