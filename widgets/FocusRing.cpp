// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "widgets/FocusRing.h"

#include <QFocusEvent>
#include <QPainter>
#include <QWidget>

namespace {
constexpr double kWidth = 2;
constexpr QColor kColour{255, 255, 255, 217};

bool comesFromKeyboard(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason
        || reason == Qt::ShortcutFocusReason;
}

/// The widget will have the focus again when its window has.
bool isForTheMoment(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
}
} // namespace

FocusRing::FocusRing(QWidget *widget, double inset, double radius)
    : FocusRing(
        widget, [=] { return QRectF(widget->rect()).adjusted(inset, inset, -inset, -inset); }, radius, kWidth)
{
}

FocusRing::FocusRing(QWidget *widget, std::function<QRectF()> outline, double radius, double width)
    : QObject(widget)
    , m_widget(widget)
    , m_outline(std::move(outline))
    , m_radius(radius)
    , m_width(width)
{
    widget->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (!isForTheMoment(reason))
            setShown(event->type() == QEvent::FocusIn && comesFromKeyboard(reason));
    } else if (event->type() == QEvent::Paint && m_isShown && m_widget->hasFocus()) {
        // Painted over what the widget paints itself.
        watched->event(event);
        draw();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void FocusRing::setShown(bool shown)
{
    m_isShown = shown;
    m_widget->update();
}

void FocusRing::draw()
{
    QPainter painter(m_widget);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kColour, m_width));
    const double half = m_width / 2;
    painter.drawRoundedRect(m_outline().adjusted(half, half, -half, -half), m_radius, m_radius);
}
