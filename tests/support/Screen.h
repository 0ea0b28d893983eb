// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

/// What a window shows. Widgets are told apart by their object names.
namespace Screen {

/// The child widgets that can be seen, or could if the window were shown, in alphabetical order.
QStringList visibleWidgets(const QWidget &window);

/// One line per child widget: name, whether it is hidden, geometry, style sheet, text.
QStringList everything(const QWidget &window);

/// Shows every child widget that is named, hides every other one.
void showOnly(QWidget &window, const QStringList &names);

} // namespace Screen

/// Writes down, in order, which child widgets are shown ("+m_rocketLb") and hidden ("-m_rocketLb"). A call
/// that changes nothing is not seen, nor is a widget that only comes and goes with its parent.
class VisibilityRecorder : public QObject {
public:
    explicit VisibilityRecorder(const QWidget &window);

    QStringList changes;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void record(const QObject *widget, bool shown);

    QHash<const QObject *, bool> m_shown;
};
