// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QAccessibleWidget>

class ClickableProgressBar;

/// What a screen reader is told of a ClickableProgressBar: a button or a progress bar, whichever it is at the
/// moment, by the words that are shown on it.
class BarAccess : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    /// From now on every ClickableProgressBar of the process is described so.
    static void install();

    explicit BarAccess(ClickableProgressBar *bar);

    bool isValid() const override;
    QAccessible::Role role() const override;
    QString text(QAccessible::Text kind) const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString &name) override;

    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    QVariant maximumValue() const override;
    QVariant minimumValue() const override;
    QVariant minimumStepSize() const override;

private:
    ClickableProgressBar *bar() const;
    QString words() const;
};
