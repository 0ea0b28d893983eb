// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QJsonObject>
#include <QList>
#include <QRect>
#include <QString>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

/// What is known of one visible widget. Places are in the window's pixels.
struct WidgetFacts {
    QString name; ///< object name, else the class
    QString parent;
    QRect geometry; ///< relative to its parent
    QRect place; ///< where it shows its content, in the window
    QString text; ///< as shown; empty: none
    QString state; ///< what else can be seen of it: a value, a picture
    QRect ink; ///< where its text's strokes would go if nothing cut them; null: no text
    int fontSize = 0; ///< in pixels
    bool isBold = false;
    bool isLabel = false;

    QJsonObject toJson() const;
    static WidgetFacts fromJson(const QJsonObject &object);
    QString toLine() const; ///< name, geometry, text: what a person checks
};

/// Every visible named widget in \a window, in the order they are drawn, parents first.
QList<WidgetFacts> visibleWidgets(const QWidget &window);

/// What was written of a picture's widgets; empty when it cannot be read.
QList<WidgetFacts> readFacts(const QString &path);
