// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "panel/Styles.h"

#include <QStringList>
#include <QWidget>

namespace QuillonFirmwareUpgrade::Styles {

QString label(const LabelStyle &style, const QString &family)
{
    QStringList properties{QStringLiteral("border:0px;"),
                           QStringLiteral("color:rgba(%1);").arg(QLatin1String(style.color))};
    if (style.namesFamily)
        properties << QStringLiteral("font-family:\"%1\";").arg(family);
    properties << QStringLiteral("font-size:%1px;").arg(style.sizePx)
               << QStringLiteral("font-weight:%1;").arg(style.weight);
    if (style.letterSpacing)
        properties << QStringLiteral("letter-spacing:0px;");
    if (style.textAlign)
        properties << QStringLiteral("text-align:%1;").arg(QLatin1String(style.textAlign));
    return QStringLiteral("QLabel{") + properties.join(u' ') + QStringLiteral("}");
}

QString retryText(const QString &family)
{
    return QStringLiteral("QLabel{border:0px; color:rgba(47,212,179,1);font-family:\"%1\";font-size:16px;"
                          " font-weight:700; letter-spacing:0px; text-align:center;}")
        .arg(family);
}

QString offlineToolLink(const QString &family)
{
    return QStringLiteral("QLabel{border:0px; font-family:\"%1\"; font-size:14px;}").arg(family);
}

QString notes(const QString &family)
{
    return QStringLiteral(
               "QTextEdit {  border: none;  background: transparent;  color: rgba(255, 255, 255, 0.7);"
               "  font-family: '%1';  font-size: 14px;  font-weight: 400;  letter-spacing: 0px;}"
               "QScrollBar:vertical {  background: transparent;  width: 5px;  margin: 0px;  border: none;}"
               "QScrollBar::handle:vertical {  background: rgba(255,255,255,0.15);  width: 5px;"
               "  min-height: 60px;  max-height: 60px;  border-radius: 2.4px;  border: none;}"
               "QScrollBar::handle:vertical:hover {  background: rgba(255,255,255,0.5);}"
               "QScrollBar::handle:vertical:pressed {  background: rgba(255,255,255,0.7);}"
               "QScrollBar::add-line:vertical {  height: 0px;  border: none;}"
               "QScrollBar::sub-line:vertical {  height: 0px;  border: none;}"
               "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical {"
               "  background: transparent;  border: none;}")
        .arg(family);
}

void give(QWidget &widget, const QString &style)
{
    if (widget.styleSheet() != style)
        widget.setStyleSheet(style);
}

} // namespace QuillonFirmwareUpgrade::Styles
