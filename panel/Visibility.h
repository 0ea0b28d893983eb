// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QWidget>

#include <initializer_list>

/// Shows or hides several widgets; one that does not exist is left out.
inline void setAllVisible(bool visible, std::initializer_list<QWidget *> widgets)
{
    for (QWidget *widget : widgets) {
        if (widget)
            widget->setVisible(visible);
    }
}

inline void showAll(std::initializer_list<QWidget *> widgets)
{
    setAllVisible(true, widgets);
}

inline void hideAll(std::initializer_list<QWidget *> widgets)
{
    setAllVisible(false, widgets);
}
