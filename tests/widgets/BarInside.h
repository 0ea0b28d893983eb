// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "widgets/ClickableProgressBar.h"

#include <QList>

/// What tests may see of the inside of a bar, which shows it only by its pixels.
struct BarInside {
    explicit BarInside(const ClickableProgressBar &bar);

    /// The bar alone gets the event, which otherwise would go on to its parent.
    static void press(ClickableProgressBar &bar, QMouseEvent &event);

    QColor background;
    QColor border;
    double borderWidth;
    bool isClickable;
    bool isHovered; ///< the pointer is on it
    QList<const void *> fields; ///< where it keeps these: clickable, the colours, the border's width, hovered
};
