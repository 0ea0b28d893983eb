// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/ProgramThreads.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

namespace {

QByteArray contentOf(const QString &file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

QString folderOf(int thread)
{
    return QStringLiteral("/proc/self/task/%1/").arg(thread);
}

} // namespace

QList<int> ProgramThreads::all()
{
    // A thread goes by its creator's name until it is given another.
    const QByteArray name = contentOf(QStringLiteral("/proc/self/comm"));
    QList<int> threads;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (contentOf(folderOf(task.toInt()) + QStringLiteral("comm")) == name)
            threads.append(task.toInt());
    }
    return threads;
}

qint64 ProgramThreads::sleeps(int thread)
{
    const QByteArray field("\nvoluntary_ctxt_switches:");
    const QByteArray status = contentOf(folderOf(thread) + QStringLiteral("status"));
    const qsizetype at = status.indexOf(field);
    if (at < 0)
        return -1;
    const qsizetype from = at + field.size();
    return status.sliced(from, status.indexOf('\n', from) - from).trimmed().toLongLong();
}
