// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiled without access control, so that no test has to be.
#include "tests/widgets/BarInside.h"

#include <type_traits>

// The events that it takes, each by a function of its own.
template <typename Event> using Handler = void (ClickableProgressBar::*)(Event *);
static_assert(std::is_same_v<decltype(&ClickableProgressBar::mousePressEvent), Handler<QMouseEvent>>);
static_assert(std::is_same_v<decltype(&ClickableProgressBar::enterEvent), Handler<QEnterEvent>>);
static_assert(std::is_same_v<decltype(&ClickableProgressBar::leaveEvent), Handler<QEvent>>);
static_assert(std::is_same_v<decltype(&ClickableProgressBar::paintEvent), Handler<QPaintEvent>>);

BarInside::BarInside(const ClickableProgressBar &bar)
    : background(bar.m_backgroundColor)
    , border(bar.m_borderColor)
    , borderWidth(bar.m_borderWidth)
    , isClickable(bar.m_clickable)
    , isHovered(bar.m_hovered)
    , fields{&bar.m_clickable,   &bar.m_backgroundColor, &bar.m_progressColor,
             &bar.m_borderColor, &bar.m_borderWidth,     &bar.m_hovered}
{
}

void BarInside::press(ClickableProgressBar &bar, QMouseEvent &event)
{
    bar.mousePressEvent(&event);
}
