// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>

/// The threads of this program and of the libraries that it is linked with, the main thread included. GLib
/// keeps a few more, under names of their own, and ends them when it likes.
namespace ProgramThreads {

QList<int> all();
/// How often \a thread has gone to sleep of its own accord, which is how often something has woken it up; -1
/// when it has ended.
qint64 sleeps(int thread);

} // namespace ProgramThreads
