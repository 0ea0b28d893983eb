// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Interrupt.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <csignal>

namespace probe {

namespace {

using namespace std::chrono_literals;

/// A signal handler may do next to nothing, so a timer looks whether it ran.
constexpr auto kLook = 50ms;

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterrupt(int)
{
    interrupted = 1;
}

} // namespace

void catchInterrupts()
{
    std::signal(SIGINT, noteInterrupt);
    std::signal(SIGTERM, noteInterrupt);
}

void waitForInterrupt(std::optional<std::chrono::milliseconds> limit)
{
    const QDeadlineTimer end = limit ? QDeadlineTimer(*limit) : QDeadlineTimer(QDeadlineTimer::Forever);
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (interrupted || end.hasExpired())
            loop.quit();
    });
    look.start(kLook);
    loop.exec();
}

} // namespace probe
