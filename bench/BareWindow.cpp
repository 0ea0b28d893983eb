// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/BareWindow.h"

#include <QDataStream>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTextEdit>
#include <QWidget>

namespace {
enum Kind { Other, Label, Button, Bar, Box };

Kind kindOf(const QWidget *widget)
{
    if (qobject_cast<const QLabel *>(widget))
        return Label;
    if (qobject_cast<const QPushButton *>(widget))
        return Button;
    if (qobject_cast<const QProgressBar *>(widget))
        return Bar;
    return qobject_cast<const QTextEdit *>(widget) ? Box : Other;
}

QWidget *make(const BareWindow::Child &child, QWidget *parent)
{
    if (child.kind == Button)
        return new QPushButton(parent);
    if (child.kind == Bar)
        return new QProgressBar(parent);
    if (child.kind == Box) {
        auto *box = new QTextEdit(parent);
        box->setReadOnly(true);
        box->setPlainText(child.text);
        return box;
    }
    auto *label = new QLabel(child.text, parent);
    label->setAlignment(Qt::Alignment(child.alignment));
    label->setWordWrap(child.wrapsWords);
    if (!child.picture.isNull())
        label->setPixmap(child.picture);
    return label;
}
} // namespace

BareWindow::BareWindow(const QWidget &model)
    : m_size(model.size())
    , m_style(model.styleSheet())
{
    QList<const QWidget *> found;
    const auto widgets = model.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const Kind kind = kindOf(widget);
        const int parent = int(found.indexOf(widget->parentWidget()));
        // What a text box consists of comes with it.
        if (kind == Other || (parent < 0 && widget->parentWidget() != &model))
            continue;
        const auto *label = qobject_cast<const QLabel *>(widget);
        const auto *box = qobject_cast<const QTextEdit *>(widget);
        const QString text = label ? label->text() : box ? box->toPlainText() : QString();
        found.append(widget);
        m_children.append({kind, parent, widget->geometry(), widget->isHidden(),
                           label ? int(label->alignment()) : 0, label && label->wordWrap(), text,
                           widget->styleSheet(), label ? label->pixmap() : QPixmap()});
    }
}

QWidget *BareWindow::create() const
{
    auto *window = new QWidget(nullptr, Qt::FramelessWindowHint);
    window->setFixedSize(m_size);
    window->setWindowModality(Qt::ApplicationModal);
    window->setAttribute(Qt::WA_StyledBackground, true);
    window->setObjectName(QStringLiteral("FirmwareUpgradeWidget")); // as its style sheet wants it
    window->setStyleSheet(m_style);
    QList<QWidget *> widgets;
    for (const Child &child : m_children) {
        QWidget *widget = make(child, child.parent < 0 ? window : widgets.at(child.parent));
        widget->setGeometry(child.geometry);
        if (!child.style.isEmpty())
            widget->setStyleSheet(child.style);
        if (child.isHidden)
            widget->hide();
        widgets.append(widget);
    }
    return window;
}

QDataStream &operator<<(QDataStream &stream, const BareWindow::Child &child)
{
    // Not as a file of pictures: to read one would warm up what reads them.
    const QImage picture = child.picture.toImage();
    return stream << child.kind << child.parent << child.geometry << child.isHidden << child.alignment
                  << child.wrapsWords << child.text << child.style << picture.size() << int(picture.format())
                  << QByteArray(reinterpret_cast<const char *>(picture.constBits()), picture.sizeInBytes());
}

QDataStream &operator>>(QDataStream &stream, BareWindow::Child &child)
{
    QSize size;
    int format = 0;
    QByteArray bits;
    stream >> child.kind >> child.parent >> child.geometry >> child.isHidden >> child.alignment
        >> child.wrapsWords >> child.text >> child.style >> size >> format >> bits;
    if (!size.isEmpty())
        child.picture = QPixmap::fromImage(QImage(reinterpret_cast<const uchar *>(bits.constData()),
                                                  size.width(), size.height(), QImage::Format(format))
                                               .copy());
    return stream;
}

QDataStream &operator<<(QDataStream &stream, const BareWindow &window)
{
    return stream << window.m_size << window.m_style << window.m_children;
}

QDataStream &operator>>(QDataStream &stream, BareWindow &window)
{
    return stream >> window.m_size >> window.m_style >> window.m_children;
}
