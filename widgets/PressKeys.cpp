// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "widgets/PressKeys.h"

#include <QKeyEvent>
#include <QWidget>

PressKeys::PressKeys(QWidget *widget, std::function<void()> press)
    : QObject(widget)
    , m_press(std::move(press))
{
    // A click leaves the focus where it is: it takes effect at once and needs none.
    widget->setFocusPolicy(Qt::TabFocus);
    widget->installEventFilter(this);
}

bool PressKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool isPress
        = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter || key->key() == Qt::Key_Space;
    if (!isPress || (key->modifiers() & ~Qt::KeypadModifier))
        return QObject::eventFilter(watched, event);
    event->accept();
    // A copy is called: the call may delete the widget, and this with it.
    const std::function<void()> press = m_press;
    if (!key->isAutoRepeat())
        press();
    return true;
}
