// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/trace/TraceRecorder.h"

namespace probe {

bool TraceRecorder::begin(const QString &file, QString *error)
{
    m_file.setFileName(file);
    const QByteArray first = Trace::firstLine();
    // Unbuffered: a probe that is killed leaves whole lines.
    if (m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)
        && m_file.write(first) == first.size())
        return true;
    *error = file + QStringLiteral(": ") + m_file.errorString();
    return false;
}

void TraceRecorder::take(const TraceEvent &event)
{
    if (!m_whole)
        return;
    const QByteArray line = Trace::lineOf(event);
    if (m_file.pos() + line.size() > Trace::kLargestFile || m_file.write(line) != line.size())
        m_whole = false;
}

} // namespace probe
