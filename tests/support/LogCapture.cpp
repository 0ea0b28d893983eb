// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/LogCapture.h"

#include "tests/support/DeepCopy.h"

#include <QMutex>
#include <QMutexLocker>

namespace {
QMutex mutex;
QStringList captured;
QtMessageHandler former = nullptr;

void capture(QtMsgType type, const QMessageLogContext &context, const QString &line)
{
    {
        const QMutexLocker lock(&mutex);
        captured.append(deepCopy(line));
    }
    if (former)
        former(type, context, line);
}
} // namespace

LogCapture::LogCapture()
{
    clear();
    former = qInstallMessageHandler(capture);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(former);
}

QStringList LogCapture::lines() const
{
    const QMutexLocker lock(&mutex);
    return deepCopy(captured);
}

QStringList LogCapture::startingWith(const QString &prefix) const
{
    QStringList found;
    for (const QString &line : lines()) {
        if (line.startsWith(prefix))
            found.append(line);
    }
    return found;
}

void LogCapture::clear()
{
    const QMutexLocker lock(&mutex);
    captured.clear();
}
