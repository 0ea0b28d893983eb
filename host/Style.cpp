// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Style.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

// A static library's resources have to be asked for, outside of any namespace.
static void loadImages()
{
    Q_INIT_RESOURCE(images);
}

namespace host {

namespace {
// A word behind "@" stands for one of the colours.
constexpr char16_t kSheet[] = uR"(
#HostWindow { background: @background; }
#side { background: @background; }
#logTitle { color: @faint; font-family: "Microsoft YaHei"; font-size: 13px; }
QGroupBox, QGroupBox QWidget { font-family: "Microsoft YaHei"; font-size: 13px; }
QGroupBox { background: @card; border: 1px solid @line; border-radius: 4px; margin-top: 22px; padding: 6px; color: @text; }
QGroupBox::title { subcontrol-origin: margin; left: 2px; top: 2px; color: @faint; }
QGroupBox QLabel, QGroupBox QCheckBox { color: @text; }
QLineEdit, QComboBox, QPlainTextEdit { background: @background; color: @text; border: 1px solid @line; border-radius: 4px;
    padding: 3px 6px; selection-background-color: @selection; }
QComboBox::drop-down { border: none; border-radius: 3px; width: 22px; background: @background; }
QComboBox::down-arrow { image: url(:/host/down.png); width: 10px; height: 6px; }
QComboBox QAbstractItemView { background: @card; color: @text; border: 1px solid @line; selection-background-color: @selection; }
QGroupBox QLineEdit:focus, QGroupBox QComboBox:focus, QPlainTextEdit:focus, QGroupBox QPushButton:focus,
    QGroupBox QCheckBox:focus { border: 1px solid @teal; }
/* A line that is typed into keeps two pixels of its own. */
QGroupBox QComboBox:editable { padding-left: 4px; }
QGroupBox QComboBox QLineEdit, QGroupBox QComboBox QLineEdit:focus { border: none; padding: 0; }
QGroupBox QCheckBox { border: 1px solid transparent; border-radius: 4px; padding: 2px; margin-left: -3px;
    spacing: 8px; }
QGroupBox QCheckBox::indicator { width: 16px; height: 16px; border: 1px solid @faint; border-radius: 3px; background: @background; }
QGroupBox QCheckBox::indicator:checked { border-color: @selection; background: @selection; image: url(:/host/check.png); }
QGroupBox QPushButton { background: @line; color: @text; border: 1px solid @line; border-radius: 4px; padding: 4px 10px; }
QGroupBox QPushButton:hover { background: @pointed; }
QGroupBox QPushButton:pressed { background: @background; }
#log QScrollBar { background: @background; }
#log QScrollBar:vertical { width: 8px; }
#log QScrollBar:horizontal { height: 8px; }
#log QScrollBar::handle { background: @line; border-radius: 4px; }
#log QScrollBar::handle:vertical { min-height: 24px; }
#log QScrollBar::handle:horizontal { min-width: 24px; }
#log QScrollBar::add-line, #log QScrollBar::sub-line { width: 0; height: 0; }
)";
} // namespace

QString windowStyleSheet()
{
    struct Entry {
        QLatin1StringView mark;
        QColor colour;
    };
    const Entry entries[]{
        {QLatin1StringView("@background"), Colours::kBackground},
        {QLatin1StringView("@card"), Colours::kCard},
        {QLatin1StringView("@line"), Colours::kLine},
        {QLatin1StringView("@text"), Colours::kText},
        {QLatin1StringView("@faint"), Colours::kFaintText},
        {QLatin1StringView("@selection"), Colours::kSelection},
        {QLatin1StringView("@pointed"), Colours::kPointedAt},
        {QLatin1StringView("@teal"), Colours::kTeal},
    };
    QString sheet = QString::fromUtf16(kSheet);
    for (const Entry &entry : entries)
        sheet.replace(entry.mark, entry.colour.name());
    return sheet;
}

void makeApplicationDark()
{
    loadImages();
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette palette(Colours::kCard, Colours::kBackground);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, Colours::kText);
    palette.setColor(QPalette::Base, Colours::kCard);
    palette.setColor(QPalette::Highlight, Colours::kSelection);
    palette.setColor(QPalette::HighlightedText, Colours::kText);
    QApplication::setPalette(palette);
}

} // namespace host
