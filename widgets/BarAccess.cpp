// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "widgets/BarAccess.h"

#include "widgets/ClickableProgressBar.h"

#include <QLabel>

namespace {
QAccessibleInterface *describeBar(const QString &className, QObject *object)
{
    auto *bar = qobject_cast<ClickableProgressBar *>(object);
    return bar && className == QLatin1String(ClickableProgressBar::staticMetaObject.className())
        ? new BarAccess(bar)
        : nullptr;
}

/// The library may be unloaded while the application goes on.
struct Installation {
    Installation() { QAccessible::installFactory(describeBar); }
    ~Installation() { QAccessible::removeFactory(describeBar); }
    Q_DISABLE_COPY_MOVE(Installation)
};
} // namespace

void BarAccess::install()
{
    static const Installation installation;
}

BarAccess::BarAccess(ClickableProgressBar *bar)
    : QAccessibleWidget(bar, QAccessible::ProgressBar)
{
}

/// A bar that is being destroyed is no bar any more.
bool BarAccess::isValid() const
{
    return bar() && QAccessibleWidget::isValid();
}

ClickableProgressBar *BarAccess::bar() const
{
    return qobject_cast<ClickableProgressBar *>(object());
}

QAccessible::Role BarAccess::role() const
{
    return isValid() && bar()->isClickable() ? QAccessible::Button : QAccessible::ProgressBar;
}

/// The labels on the bar that can be seen and say something.
QString BarAccess::words() const
{
    QStringList words;
    const auto labels = bar()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QLabel *label : labels) {
        if (label->isVisibleTo(bar()) && !label->text().isEmpty())
            words.append(label->text().trimmed());
    }
    return words.join(u' ');
}

QString BarAccess::text(QAccessible::Text kind) const
{
    if (!isValid())
        return {};
    if (kind == QAccessible::Value)
        return QString::number(bar()->value()) + u'%';
    const QString shown = kind == QAccessible::Name ? words() : QString();
    return shown.isEmpty() ? QAccessibleWidget::text(kind) : shown;
}

void *BarAccess::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QStringList BarAccess::actionNames() const
{
    const QStringList press{pressAction()};
    return isValid() && bar()->isClickable() ? press + QAccessibleWidget::actionNames()
                                             : QAccessibleWidget::actionNames();
}

void BarAccess::doAction(const QString &name)
{
    if (name != pressAction())
        return QAccessibleWidget::doAction(name);
    if (isValid() && bar()->isClickable())
        Q_EMIT bar()->clicked();
}

QVariant BarAccess::currentValue() const
{
    return isValid() ? QVariant(bar()->value()) : QVariant();
}

/// A progress is told, not set.
void BarAccess::setCurrentValue(const QVariant &) { }

QVariant BarAccess::maximumValue() const
{
    return isValid() ? QVariant(bar()->maximum()) : QVariant();
}

QVariant BarAccess::minimumValue() const
{
    return isValid() ? QVariant(bar()->minimum()) : QVariant();
}

QVariant BarAccess::minimumStepSize() const
{
    return 1;
}
