// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "widgets/ClickableProgressBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace {
constexpr QColor kHoveredOutlinedBackground{36, 95, 89};
}

ClickableProgressBar::ClickableProgressBar(QWidget *parent)
    : QProgressBar(parent)
{
}

ClickableProgressBar::~ClickableProgressBar() = default;

void ClickableProgressBar::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void ClickableProgressBar::setProgressColor(const QColor &color)
{
    m_progressColor = color;
    update();
}

void ClickableProgressBar::setBorderColor(const QColor &color)
{
    m_borderColor = color;
    update();
}

void ClickableProgressBar::setBorderWidth(double width)
{
    m_borderWidth = width;
    update();
}

void ClickableProgressBar::clearBorder()
{
    m_borderColor = Qt::transparent;
    m_borderWidth = 0.0;
    update();
}

void ClickableProgressBar::setClickable(bool clickable)
{
    m_clickable = clickable;
}

bool ClickableProgressBar::isClickable() const
{
    return m_clickable;
}

bool ClickableProgressBar::hasVisibleBorder() const
{
    return m_borderWidth > 0 && m_borderColor.alpha() > 0;
}

void ClickableProgressBar::mousePressEvent(QMouseEvent *event)
{
    if (!m_clickable) {
        event->ignore();
        return;
    }
    QProgressBar::mousePressEvent(event);
    // The receiver may run an event loop in which the bar is deleted; an event that is not accepted would
    // then be offered to the parent of a widget that is gone.
    event->accept();
    Q_EMIT clicked();
}

void ClickableProgressBar::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QProgressBar::enterEvent(event);
}

void ClickableProgressBar::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QProgressBar::leaveEvent(event);
}

void ClickableProgressBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    const QRectF pill = rect();
    QPainterPath outline;
    outline.addRoundedRect(pill, pill.height() * 0.5, pill.height() * 0.5);
    painter.fillPath(outline,
                     m_hovered && hasVisibleBorder() ? kHoveredOutlinedBackground : m_backgroundColor);

    if (maximum() > minimum()) {
        const double fraction = (double(value()) - minimum()) / (double(maximum()) - minimum());
        const double width = pill.width() * fraction;
        if (width > 0) {
            painter.setClipPath(outline);
            painter.fillRect(QRectF(0, 0, width, pill.height()), m_progressColor);
            painter.setClipping(false);
        }
    }

    if (hasVisibleBorder()) {
        painter.setPen(QPen(m_borderColor, m_borderWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        painter.setBrush(Qt::NoBrush);
        const double half = m_borderWidth / 2;
        const QRectF inner = pill.adjusted(half, half, -half, -half);
        painter.drawRoundedRect(inner, inner.height() * 0.5, inner.height() * 0.5);
    }
}
