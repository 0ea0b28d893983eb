// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Caption.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QLineEdit>
#include <QPainter>
#include <QTextLayout>

namespace host {

namespace {
/// How far down in a line that is typed into its letters stand.
int baseLineOf(const QLineEdit &line)
{
    QTextLayout layout(line.text(), line.font());
    layout.beginLayout();
    const QTextLine text = layout.createLine();
    layout.endLayout();
    return line.inputMethodQuery(Qt::ImCursorRectangle).toRect().y() + qRound(text.ascent());
}

int baseLineOf(const QWidget &field)
{
    const auto *box = qobject_cast<const QComboBox *>(&field);
    if (box && box->lineEdit())
        return box->lineEdit()->y() + baseLineOf(*box->lineEdit());
    const QFontMetrics letters = field.fontMetrics();
    return (field.height() - letters.height() + 1) / 2 + letters.ascent(); // a style rounds up
}
} // namespace

void Caption::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QPoint base = buddy()->mapTo(parentWidget(), QPoint(0, baseLineOf(*buddy())));
    painter.drawText(0, base.y() - y(), text());
}

} // namespace host
