// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QObject>
#include <QRectF>

#include <functional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

/// Shows a person at the keyboard where the focus is: draws a ring into a widget that was reached with the
/// Tab key. A widget that was clicked, or that has the focus because its window is active, shows none.
/// Belongs to the widget.
class FocusRing : public QObject {
public:
    /// The ring runs \a inset pixels inside the border of \a widget, with corners of the widget's height or
    /// less.
    FocusRing(QWidget *widget, double inset, double radius);
    /// A ring \a width pixels thick runs along the inside of what \a outline gives, in the widget's pixels,
    /// each time it is drawn.
    FocusRing(QWidget *widget, std::function<QRectF()> outline, double radius, double width);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setShown(bool shown);
    void draw();

    QWidget *const m_widget;
    const std::function<QRectF()> m_outline;
    const double m_radius;
    const double m_width;
    bool m_isShown = false;
};
