#pragma once

#include <QObject>

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

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setShown(bool shown);
    void draw();

    QWidget *const m_widget;
    const double m_inset;
    const double m_radius;
    bool m_isShown = false;
};
