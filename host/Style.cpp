#include "host/Style.h"

namespace host {

namespace {
// A word behind "@" stands for one of the colours.
constexpr char16_t kSheet[] = uR"(
#HostWindow { background: @background; }
#side { background: @background; }
#logTitle { color: @faint; font-size: 13px; }
#side QWidget { font-size: 13px; }
QGroupBox { background: @card; border: 1px solid @line; border-radius: 4px; margin-top: 22px; padding: 6px; color: @text; }
QGroupBox::title { subcontrol-origin: margin; left: 2px; top: 2px; color: @faint; }
#side QLabel, #side QCheckBox { color: @text; }
QLineEdit, QComboBox, QPlainTextEdit { background: @background; color: @text; border: 1px solid @line; border-radius: 4px;
    padding: 3px 6px; selection-background-color: @blue; }
QComboBox QAbstractItemView { background: @card; color: @text; selection-background-color: @blue; }
#side QLineEdit:focus, #side QComboBox:focus, QPlainTextEdit:focus, #side QPushButton:focus, #side QCheckBox:focus
    { border: 1px solid @teal; }
#side QCheckBox { border: 1px solid transparent; border-radius: 4px; padding: 2px; }
#side QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid @faint; border-radius: 3px; background: @background; }
#side QCheckBox::indicator:checked { background: @teal; border-color: @teal; }
#side QPushButton { background: @blue; color: @text; border: 1px solid @blue; border-radius: 4px; padding: 4px 10px; }
#side QPushButton:pressed { background: @line; }
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
        {QLatin1StringView("@blue"), Colours::kBlue},
        {QLatin1StringView("@teal"), Colours::kTeal},
    };
    QString sheet = QString::fromUtf16(kSheet);
    for (const Entry &entry : entries)
        sheet.replace(entry.mark, entry.colour.name());
    return sheet;
}

} // namespace host
