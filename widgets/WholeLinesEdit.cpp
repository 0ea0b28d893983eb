// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "widgets/WholeLinesEdit.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {
/// Between the text and a line around it.
constexpr int kBelowText = 3;
constexpr int kBesideScrollBar = 2;

/// How far down the last line reaches that ends within \a height.
double endOfWholeLines(const QTextDocument &document, double height)
{
    double end = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const double top = document.documentLayout()->blockBoundingRect(block).top();
        for (int i = 0; i < block.layout()->lineCount(); ++i) {
            const double bottom = top + block.layout()->lineAt(i).rect().bottom();
            if (bottom > height)
                return end;
            end = bottom;
        }
    }
    return end;
}
} // namespace

WholeLinesEdit::WholeLinesEdit(QWidget *parent)
    : QTextEdit(parent)
{
    setReadOnly(true);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            [this] { endBelowWholeLine(); });
}

void WholeLinesEdit::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    endBelowWholeLine();
}

void WholeLinesEdit::keepClearOf(QWidget *sibling)
{
    m_above.append(sibling);
    sibling->installEventFilter(this);
}

bool WholeLinesEdit::eventFilter(QObject *watched, QEvent *event)
{
    const auto type = event->type();
    if (type == QEvent::ShowToParent || type == QEvent::HideToParent || type == QEvent::Move)
        endBelowWholeLine();
    return QTextEdit::eventFilter(watched, event);
}

/// How much of the box's height its text may take.
int WholeLinesEdit::room() const
{
    int end = contentsRect().height();
    for (const QPointer<QWidget> &sibling : m_above) {
        if (sibling && !sibling->isHidden())
            end = std::min(end, sibling->y() - y());
    }
    return end;
}

QRect WholeLinesEdit::outline() const
{
    QRect around = viewport()->geometry();
    around.setHeight(std::min(around.height() + kBelowText, room()));
    if (verticalScrollBar()->isVisible())
        around.setWidth(around.width() - kBesideScrollBar);
    return around;
}

void WholeLinesEdit::endBelowWholeLine()
{
    const bool isTooLong = document()->size().height() > room();
    const int end = isTooLong ? int(std::ceil(endOfWholeLines(*document(), room()))) : 0;
    const int margin = end > 0 ? contentsRect().height() - end : 0;
    if (margin != viewportMargins().bottom())
        setViewportMargins(0, 0, 0, margin);
    update(); // the outline may have changed
}
