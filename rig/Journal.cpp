// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Journal.h"

#include <QMutexLocker>

namespace rig {

Journal::Journal(QObject *parent)
    : QObject(parent)
{
    m_clock.start();
}

void Journal::record(const QString &source, const QString &text)
{
    JournalEntry entry;
    {
        const QMutexLocker lock(&m_mutex);
        entry = {now(), source, text};
        if (m_entries.size() == kKept)
            m_entries.removeFirst();
        m_entries.append(entry);
    }
    Q_EMIT recorded(entry);
}

QList<JournalEntry> Journal::entries() const
{
    const QMutexLocker lock(&m_mutex);
    return m_entries;
}

std::chrono::milliseconds Journal::now() const
{
    return std::chrono::milliseconds(m_clock.elapsed());
}

} // namespace rig
