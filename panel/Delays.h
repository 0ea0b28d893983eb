// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QTimer>

#include <chrono>
#include <utility>

/// Runs \a action once, on the owner's thread, \a delay from now. The timer is a child of \a owner: an owner
/// that is deleted or that stops its child timers takes the action with it.
template <typename Owner, typename Action>
void runAfter(std::chrono::milliseconds delay, Owner *owner, Action action)
{
    auto *timer = new QTimer(owner);
    timer->setSingleShot(true);
    // Devices need these delays in full; a coarse timer may be a twentieth early.
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, owner, [timer, action = std::move(action)] {
        timer->deleteLater();
        action();
    });
    timer->start(delay);
}
