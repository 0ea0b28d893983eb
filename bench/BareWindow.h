// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QPixmap>
#include <QRect>
#include <QString>

QT_BEGIN_NAMESPACE
class QDataStream;
class QWidget;
QT_END_NAMESPACE

/// What a window shows and nothing of what it does: the measure for a panel is a window with as many
/// children of the same kinds, at the same places, with the same texts, pictures and style sheets.
class BareWindow {
public:
    BareWindow() = default;
    /// Describes \a model and every child of its.
    explicit BareWindow(const QWidget &model);

    QWidget *create() const;

    friend QDataStream &operator<<(QDataStream &stream, const BareWindow &window);
    friend QDataStream &operator>>(QDataStream &stream, BareWindow &window);

    struct Child {
        int kind; ///< which of Qt's classes
        int parent; ///< an earlier child, or -1 for the window
        QRect geometry;
        bool isHidden;
        int alignment;
        bool wrapsWords;
        QString text;
        QString style;
        QPixmap picture;
    };

private:
    QSize m_size;
    QString m_style;
    QList<Child> m_children;
};
