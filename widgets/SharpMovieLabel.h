// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QLabel>

/// A label that its movie fills, as sharp as the screen can show it: each frame is brought to the label's
/// size in the screen's own pixels, however many of them make one of the label's. Made for movies that are at
/// least as large and leave nothing transparent: what is behind the label is not painted again for each
/// frame. GUI thread only.
class SharpMovieLabel : public QLabel {
public:
    explicit SharpMovieLabel(QWidget *parent);

    /// Like QLabel's, which does not tell its label.
    void setMovie(QMovie *movie);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void takeFrame();

    QMetaObject::Connection m_frames;
};
