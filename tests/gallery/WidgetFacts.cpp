// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/WidgetFacts.h"

#include <QAbstractButton>
#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QMovie>
#include <QPainter>
#include <QProgressBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>

namespace {
/// Room around a label for strokes that leave it.
constexpr QSize kMargin{200, 40};
/// Fainter than this is no stroke that anyone misses.
constexpr int kFaint = 48;
/// Small strokes are measured on a finer grid.
constexpr int kGrid = 2;

QString textOf(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget)) {
        if (label->textFormat() != Qt::RichText)
            return label->text();
        QTextDocument document;
        document.setHtml(label->text());
        return document.toPlainText();
    }
    if (const auto *edit = qobject_cast<const QTextEdit *>(&widget))
        return edit->toPlainText();
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return button->text();
    return {};
}

QString stateOf(const QWidget &widget)
{
    if (const auto *bar = qobject_cast<const QProgressBar *>(&widget))
        return QStringLiteral("at %1").arg(bar->value());
    const auto *label = qobject_cast<const QLabel *>(&widget);
    if (label && label->movie())
        return label->movie()->fileName()
            + QStringLiteral(", frame %1").arg(label->movie()->currentFrameNumber());
    if (label && !label->pixmap().isNull())
        return QStringLiteral("picture");
    return {};
}

QRect painted(const QImage &canvas)
{
    QRect found;
    for (int y = 0; y < canvas.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(canvas.constScanLine(y));
        for (int x = 0; x < canvas.width(); ++x) {
            if (qAlpha(line[x]) > kFaint)
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

/// From the fine grid with its margin back to the label's pixels.
QRect fromGrid(const QRect &found)
{
    if (found.isNull())
        return {};
    const QPoint topLeft(found.left() / kGrid, found.top() / kGrid);
    const QPoint bottomRight(found.right() / kGrid, found.bottom() / kGrid);
    return QRect(topLeft, bottomRight).translated(-kMargin.width(), -kMargin.height());
}

QRect inkOfRichText(const QLabel &label)
{
    QTextDocument document;
    document.setDocumentMargin(0);
    document.setDefaultFont(label.font());
    document.setHtml(label.text());
    return QRectF(label.contentsRect().topLeft(), document.size()).toAlignedRect();
}

/// Draws the label's text as the label does, without the label's borders to cut it.
QRect inkOf(const QLabel &label, const QString &text)
{
    if (text.isEmpty())
        return {};
    if (label.textFormat() == Qt::RichText)
        return inkOfRichText(label);
    QImage canvas((label.size() + 2 * kMargin) * kGrid, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.scale(kGrid, kGrid);
    painter.translate(kMargin.width(), kMargin.height());
    painter.setFont(label.font());
    const int wrap = label.wordWrap() ? Qt::TextWordWrap : 0;
    painter.drawText(label.contentsRect(), int(label.alignment()) | wrap | Qt::TextDontClip, text);
    painter.end();
    return fromGrid(painted(canvas));
}

/// The lines that begin in the visible part of a text box, in the box's pixels; one may be cut.
QRect inkOf(const QTextEdit &edit)
{
    const QAbstractTextDocumentLayout *layout = edit.document()->documentLayout();
    QRectF lines;
    for (QTextBlock block = edit.document()->begin(); block.isValid(); block = block.next()) {
        for (int i = 0; i < block.layout()->lineCount(); ++i) {
            const QRectF line = block.layout()->lineAt(i).naturalTextRect();
            const QRectF placed = line.translated(layout->blockBoundingRect(block).topLeft());
            if (placed.top() + 1 < edit.viewport()->height())
                lines |= placed;
        }
    }
    return lines.toAlignedRect().translated(edit.viewport()->pos());
}

/// A button has its text in the middle.
QRect inkOf(const QAbstractButton &button)
{
    if (button.text().isEmpty())
        return {};
    return button.fontMetrics().boundingRect(button.rect(), Qt::AlignCenter | Qt::TextShowMnemonic,
                                             button.text());
}

QRect inkOf(const QWidget &widget, const QString &text)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return inkOf(*label, text);
    if (const auto *edit = qobject_cast<const QTextEdit *>(&widget))
        return inkOf(*edit);
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return inkOf(*button);
    return {};
}

WidgetFacts factsOf(const QWidget &widget, const QWidget &window)
{
    WidgetFacts facts;
    const auto nameOf = [](const QWidget &of) {
        return of.objectName().isEmpty() ? QString::fromLatin1(of.metaObject()->className())
                                         : of.objectName();
    };
    facts.name = nameOf(widget);
    facts.parent = nameOf(*widget.parentWidget());
    facts.geometry = widget.geometry();
    facts.place = QRect(widget.mapTo(&window, QPoint()), widget.size());
    facts.text = textOf(widget);
    facts.state = stateOf(widget);
    facts.ink = inkOf(widget, facts.text);
    if (!facts.ink.isNull())
        facts.ink.translate(widget.mapTo(&window, QPoint()));
    const QFont font = widget.font();
    facts.fontSize = font.pixelSize();
    facts.isBold = font.bold();
    facts.isLabel = qobject_cast<const QLabel *>(&widget);
    // A text box shows its text in a part of itself.
    if (const auto *edit = qobject_cast<const QTextEdit *>(&widget))
        facts.place = QRect(edit->viewport()->mapTo(&window, QPoint()), edit->viewport()->size());
    return facts;
}

void collect(const QWidget &parent, const QWidget &window, QList<WidgetFacts> &found)
{
    for (const QObject *object : parent.children()) {
        const auto *child = qobject_cast<const QWidget *>(object);
        const bool isOurs = child && !child->isWindow() && !child->objectName().startsWith(u"qt_scrollarea");
        if (!isOurs || !child->isVisibleTo(&window))
            continue;
        found.append(factsOf(*child, window));
        if (!qobject_cast<const QTextEdit *>(child))
            collect(*child, window, found);
    }
}

QString toText(const QRect &rect)
{
    return QStringLiteral("%1 %2 %3 %4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

QRect toRect(const QJsonValue &value)
{
    const QStringList numbers = value.toString().split(u' ');
    return {numbers.value(0).toInt(), numbers.value(1).toInt(), numbers.value(2).toInt(),
            numbers.value(3).toInt()};
}
} // namespace

QJsonObject WidgetFacts::toJson() const
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("parent"), parent},
            {QStringLiteral("geometry"), toText(geometry)},
            {QStringLiteral("place"), toText(place)},
            {QStringLiteral("text"), text},
            {QStringLiteral("state"), state},
            {QStringLiteral("ink"), toText(ink)},
            {QStringLiteral("fontSize"), fontSize},
            {QStringLiteral("bold"), isBold},
            {QStringLiteral("label"), isLabel}};
}

WidgetFacts WidgetFacts::fromJson(const QJsonObject &object)
{
    WidgetFacts facts;
    facts.name = object[QLatin1String("name")].toString();
    facts.parent = object[QLatin1String("parent")].toString();
    facts.geometry = toRect(object[QLatin1String("geometry")]);
    facts.place = toRect(object[QLatin1String("place")]);
    facts.text = object[QLatin1String("text")].toString();
    facts.state = object[QLatin1String("state")].toString();
    facts.ink = toRect(object[QLatin1String("ink")]);
    facts.fontSize = object[QLatin1String("fontSize")].toInt();
    facts.isBold = object[QLatin1String("bold")].toBool();
    facts.isLabel = object[QLatin1String("label")].toBool();
    return facts;
}

QString WidgetFacts::toLine() const
{
    QString line = QStringLiteral("%1 in %2 (%3)").arg(name, parent, toText(geometry));
    if (!state.isEmpty())
        line += u' ' + state;
    if (!text.isEmpty())
        line += QStringLiteral(" \"%1\"").arg(QString(text).replace(u'\n', QStringLiteral("\\n")));
    return line;
}

QList<WidgetFacts> visibleWidgets(const QWidget &window)
{
    QList<WidgetFacts> found;
    collect(window, window, found);
    return found;
}

QList<WidgetFacts> readFacts(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<WidgetFacts> facts;
    const QJsonArray array = QJsonDocument::fromJson(file.readAll()).array();
    for (const QJsonValueConstRef widget : array)
        facts.append(WidgetFacts::fromJson(widget.toObject()));
    return facts;
}
