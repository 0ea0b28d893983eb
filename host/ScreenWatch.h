// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

namespace host {

/// Tells which of its screens a panel shows and how far its bar is, as a person in front of it would see.
class ScreenWatch : public QObject {
    Q_OBJECT

public:
    ScreenWatch();

    void setPanel(QWidget *panel); ///< null, or destroyed later: nothing is told
    QString screen() const { return m_screen; }

Q_SIGNALS:
    void screenShown(const QString &screen); ///< another screen than before
    void percentShown(int percent); ///< while flashing: another percentage than before

private:
    void look();

    QPointer<QWidget> m_panel;
    QTimer m_timer;
    QString m_screen;
    int m_percent = 0;
};

} // namespace host
