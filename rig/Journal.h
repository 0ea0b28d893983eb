// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>

#include <chrono>

namespace rig {

/// One thing that happened in the rig.
struct JournalEntry {
    std::chrono::milliseconds at; ///< since the journal was opened
    QString source; ///< "device", "server", "boot loader", "tool file"
    QString text; ///< one line of English for people
};

/// What happened in the rig, in order and with times. Only the last kKept things are kept: a rig may run for
/// days. Every function is thread-safe.
class Journal : public QObject {
    Q_OBJECT

public:
    explicit Journal(QObject *parent = nullptr);

    static constexpr qsizetype kKept = 1000;

    void record(const QString &source, const QString &text);
    QList<JournalEntry> entries() const;
    std::chrono::milliseconds now() const; ///< the time a record made now would carry

Q_SIGNALS:
    /// Emitted by the thread that made the record.
    void recorded(const rig::JournalEntry &entry);

private:
    QElapsedTimer m_clock;
    mutable QMutex m_mutex;
    QList<JournalEntry> m_entries;
};

} // namespace rig

Q_DECLARE_METATYPE(rig::JournalEntry)
