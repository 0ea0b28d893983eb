// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QPointer>
#include <QWidget>

namespace host {

/// The place of the panel in the window. Holds it still (the panel moves itself when its title strip is
/// dragged) and shows a hint while there is none or it was closed.
class PanelFrame : public QWidget {
    Q_OBJECT

public:
    explicit PanelFrame(QWidget *parent = nullptr);

    /// \a panel is a child of this frame, or null.
    void setPanel(QWidget *panel);
    void setHint(const QString &hint);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPointer<QWidget> m_panel;
    QString m_hint;
};

} // namespace host
