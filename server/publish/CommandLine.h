// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/options/CommandLine.h"
#include "server/publish/Project.h"
#include "server/publish/Release.h"

#include <QString>
#include <QStringList>

namespace publish {

/// What quillon-publish was asked to do.
struct Options {
    enum class Command { Add, Status, RollBack };

    Command command = Command::Status;
    QString site; ///< a folder
    Project project; ///< not for Status
    Release release; ///< for Add
    QString image; ///< for Add: a file that can be read and is not empty
    bool force = false;
};

using CommandLine = options::CommandLine<Options>;

/// The exit statuses of quillon-publish.
constexpr int kStatusDone = 0;
constexpr int kStatusFailed = 1; ///< not published, not rolled back, or a site that is damaged
constexpr int kStatusWrong = 2; ///< a command line that asks for nothing that can be done

/// Reads \a arguments, the program's name first, and the files of notes that they name.
CommandLine readCommandLine(const QStringList &arguments);

} // namespace publish
