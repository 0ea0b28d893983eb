// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QCoreApplication>
#include <QEnterEvent>
#include <QWidget>

/// The pointer comes onto a widget, or goes.
namespace Pointer {

inline void enter(QWidget &widget)
{
    QEnterEvent event(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
    QCoreApplication::sendEvent(&widget, &event);
}

inline void leave(QWidget &widget)
{
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace Pointer
