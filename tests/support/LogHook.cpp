// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/LogHook.h"

#include <QCoreApplication>
#include <QThread>

#include <utility>

namespace {
QString hookedBeginning;
std::function<void(const QString &)> hookedAction;
bool running = false;
QtMessageHandler former = nullptr;

void handle(QtMsgType type, const QMessageLogContext &context, const QString &line)
{
    const bool onGuiThread = qApp && QThread::currentThread() == qApp->thread();
    if (onGuiThread && !running && line.startsWith(hookedBeginning)) {
        running = true;
        hookedAction(line);
        running = false;
    }
    if (former)
        former(type, context, line);
}
} // namespace

LogHook::LogHook(const QString &beginning, std::function<void(const QString &line)> action)
{
    hookedBeginning = beginning;
    hookedAction = std::move(action);
    former = qInstallMessageHandler(handle);
}

LogHook::~LogHook()
{
    qInstallMessageHandler(former);
    hookedAction = nullptr;
}
