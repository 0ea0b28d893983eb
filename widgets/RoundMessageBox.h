// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QMessageBox>

/// A message box without the desktop's frame, whose style sheet gives it one, round corners included. GUI
/// thread only.
class RoundMessageBox : public QMessageBox {
public:
    RoundMessageBox(Icon icon, const QString &title, const QString &text, StandardButtons buttons,
                    QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
};
