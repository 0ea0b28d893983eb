// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/trace/Trace.h"

#include <QFile>

#include <atomic>

namespace probe {

/// Writes a trace file while it happens, so that what was seen is kept however the program ends. What
/// take() is given has to come one at a time, from any thread.
class TraceRecorder {
public:
    /// Replaces \a file. False when it cannot be written; \a error then says "FILE: what is wrong".
    bool begin(const QString &file, QString *error);

    void take(const TraceEvent &event);

    /// False once the disk was full or the file as large as a reader takes. The file ends before that event.
    bool isWhole() const { return m_whole; }

private:
    QFile m_file;
    std::atomic<bool> m_whole{true};
};

} // namespace probe
