// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QStringList>

namespace rig {

/// What this process holds of the system, so that what it forgets to give back can be named. Each entry names
/// one thing by its kind: two open sockets are "socket" twice. Linux shows all of it, Windows knows threads
/// and handles only by their number, other systems show nothing but files. Thread-safe.
struct Belongings {
    static inline const QString kDeadSocket
        = QStringLiteral("socket that leads nowhere"); ///< a handle of this kind

    QStringList threads;
    /// By the file's path, or by their kind. Linux tells a TCP socket that leads nowhere from others.
    QStringList handles;
    QStringList processes; ///< children of this one, also those that have ended and were not waited for
    QStringList files; ///< below the folders that were asked for, by their path

    static Belongings ofThisProcess(const QStringList &folders);

    /// What is here and was not in \a former, for people: "thread QThread", "handle socket".
    QStringList beyond(const Belongings &former) const;

    /// The four lists above are sorted; these are as the system gives them.
    static QStringList threadsOfThisProcess();
    static QStringList handlesOfThisProcess();
    static QStringList processesOfThisProcess();
};

bool operator==(const Belongings &one, const Belongings &other);

} // namespace rig
