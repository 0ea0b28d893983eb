// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Screen.h"

#include <QEvent>
#include <QLabel>
#include <QTextEdit>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {
QString textOf(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *edit = qobject_cast<const QTextEdit *>(widget))
        return edit->toPlainText();
    return {};
}

QString placeOf(const QRect &place)
{
    return u"(%1, %2, %3, %4)"_s.arg(place.x()).arg(place.y()).arg(place.width()).arg(place.height());
}

QList<QWidget *> namedWidgets(const QWidget &window)
{
    QList<QWidget *> named;
    const auto children = window.findChildren<QWidget *>();
    for (QWidget *child : children) {
        if (!child->objectName().isEmpty() && !child->objectName().startsWith(u"qt_"))
            named.append(child);
    }
    return named;
}

/// A widget that nobody has shown or hidden is shown with its parent. While the parent is hidden, Qt 6.8
/// takes such a widget for hidden, and tells it of every time that the parent is shown.
bool showsWithItsParent(const QWidget &widget)
{
    return !widget.isHidden() || !widget.testAttribute(Qt::WA_WState_ExplicitShowHide);
}
} // namespace

QStringList Screen::visibleWidgets(const QWidget &window)
{
    QStringList names;
    const auto children = namedWidgets(window);
    for (const QWidget *child : children) {
        if (child->isVisibleTo(&window))
            names.append(child->objectName());
    }
    names.sort();
    return names;
}

QStringList Screen::everything(const QWidget &window)
{
    QStringList lines;
    const auto children = namedWidgets(window);
    for (const QWidget *child : children) {
        lines.append(child->objectName() + (child->isHidden() ? u" hidden "_s : u" shown "_s)
                     + placeOf(child->geometry()) + u' ' + child->styleSheet() + u' ' + textOf(child));
    }
    return lines;
}

void Screen::showOnly(QWidget &window, const QStringList &names)
{
    const auto children = namedWidgets(window);
    for (QWidget *child : children)
        child->setVisible(names.contains(child->objectName()));
}

VisibilityRecorder::VisibilityRecorder(const QWidget &window)
{
    const auto children = namedWidgets(window);
    for (QWidget *child : children) {
        m_shown.insert(child, showsWithItsParent(*child));
        child->installEventFilter(this);
    }
}

bool VisibilityRecorder::eventFilter(QObject *watched, QEvent *event)
{
    const bool shows = event->type() == QEvent::ShowToParent;
    if (shows || event->type() == QEvent::HideToParent)
        record(watched, shows);
    return QObject::eventFilter(watched, event);
}

void VisibilityRecorder::record(const QObject *widget, bool shown)
{
    bool &wasShown = m_shown[widget];
    if (wasShown != shown)
        changes.append((shown ? u'+' : u'-') + widget->objectName());
    wasShown = shown;
}
