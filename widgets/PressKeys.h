// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QObject>

#include <functional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

/// Lets a widget be reached with the Tab key and pressed with Return, Enter and Space. Nobody else gets these
/// keys. Belongs to the widget.
class PressKeys : public QObject {
public:
    /// \a press is called for each press; it decides whether the widget may be pressed now, and may delete
    /// it.
    PressKeys(QWidget *widget, std::function<void()> press);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const std::function<void()> m_press;
};
