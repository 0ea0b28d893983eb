// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QColor>
#include <QProgressBar>

/// A pill-shaped progress bar that is also a button. It paints itself whole: the base class's chunk and text
/// never appear; words on the bar are child labels. GUI thread only.
class ClickableProgressBar : public QProgressBar {
    Q_OBJECT

public:
    static constexpr QColor kDefaultBackground{48, 49, 60};
    static constexpr QColor kDefaultProgress{73, 74, 86};

    explicit ClickableProgressBar(QWidget *parent);
    ~ClickableProgressBar() override;

    /// The fill of the whole pill.
    void setBackgroundColor(const QColor &color);
    /// The fill of the done part.
    void setProgressColor(const QColor &color);
    QColor progressColor() const { return m_progressColor; }
    /// The outline; it shows only with a visible colour and a width above 0.
    void setBorderColor(const QColor &color);
    /// In pixels; 0 or less means no outline.
    void setBorderWidth(double width);
    void clearBorder();

    /// Whether a press emits clicked(). Otherwise a press is left to the parent.
    void setClickable(bool clickable);
    bool isClickable() const;

Q_SIGNALS:
    /// Pressed, with any button; a release is not waited for. The receiver may delete the bar.
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool hasVisibleBorder() const;

    bool m_clickable = true;
    QColor m_backgroundColor = kDefaultBackground;
    QColor m_progressColor = kDefaultProgress;
    QColor m_borderColor = Qt::transparent;
    double m_borderWidth = 0.0;
    bool m_hovered = false;
};
