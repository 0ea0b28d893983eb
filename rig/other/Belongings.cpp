// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the kernel shows of this process below /proc.
#include "rig/Belongings.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace rig {

namespace {

const QString kTasks = QStringLiteral("/proc/self/task");
const QString kDescriptors = QStringLiteral("/proc/self/fd");

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System);
}

// Empty when it is gone meanwhile.
QString textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

// "socket" for "socket:[4711]": the number is another one each time.
QString kindOf(const QString &target)
{
    const qsizetype number = target.indexOf(QStringLiteral(":["));
    const bool counted = number > 0 && target.at(number + 2).isDigit();
    return counted ? target.left(number) : target;
}

QString targetOf(const QString &link)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(QFile::encodeName(link).constData(), target, sizeof target);
    return length > 0 ? QFile::decodeName(QByteArray(target, length)) : QString();
}

// Neither listening nor connected, so of no use to anybody.
bool leadsNowhere(int descriptor)
{
    int protocol = 0;
    int listening = 0;
    socklen_t size = sizeof(int);
    sockaddr_storage peer{};
    socklen_t peerSize = sizeof peer;
    return getsockopt(descriptor, SOL_SOCKET, SO_PROTOCOL, &protocol, &size) == 0 && protocol == IPPROTO_TCP
        && getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listening, &size) == 0 && listening == 0
        && getpeername(descriptor, reinterpret_cast<sockaddr *>(&peer), &peerSize) != 0;
}

} // namespace

QStringList Belongings::threadsOfThisProcess()
{
    QStringList names;
    for (const QString &task : entriesOf(kTasks))
        names.append(textOf(kTasks + u'/' + task + QStringLiteral("/comm")));
    return names;
}

QStringList Belongings::handlesOfThisProcess()
{
    QStringList kinds;
    for (const QString &descriptor : entriesOf(kDescriptors)) {
        // The one that the folder was read with is closed by now and has no target any more.
        const QString target = targetOf(kDescriptors + u'/' + descriptor);
        if (!target.isEmpty())
            kinds.append(leadsNowhere(descriptor.toInt()) ? kDeadSocket : kindOf(target));
    }
    return kinds;
}

QStringList Belongings::processesOfThisProcess()
{
    QStringList names;
    for (const QString &task : entriesOf(kTasks)) {
        const QString children = textOf(kTasks + u'/' + task + QStringLiteral("/children"));
        for (const QString &child : children.split(u' ', Qt::SkipEmptyParts))
            names.append(textOf(QStringLiteral("/proc/%1/comm").arg(child)));
    }
    return names;
}

} // namespace rig
