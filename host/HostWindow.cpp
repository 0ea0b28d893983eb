// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/HostWindow.h"

#include "host/ControlPanel.h"
#include "host/EventLog.h"
#include "host/PanelFrame.h"
#include "host/PanelHolder.h"
#include "host/Style.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollBar>

namespace host {

namespace {
constexpr int kLogLines = 2000;
constexpr int kLogHeight = 160;
/// Of a group's title, from the group's edge.
constexpr int kTitleIndent = 3;
constexpr int kSpacing = 12;
constexpr QSize kSize{940, 800};
} // namespace

HostWindow::HostWindow(rig::Rig &rig, PanelHolder &holder, EventLog &log)
    : m_frame(new PanelFrame(this))
    , m_controls(new ControlPanel(rig, holder, this))
    , m_logTitle(new QLabel(this))
    , m_log(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("HostWindow"));
    setAttribute(Qt::WA_StyledBackground);
    setUpLog(log);
    arrange();
    setStyleSheet(windowStyleSheet());
    resize(kSize);
    setEnglish(false);
    connect(&holder, &PanelHolder::panelChanged, m_frame, &PanelFrame::setPanel);
    connect(m_controls, &ControlPanel::languageChosen, this, &HostWindow::languageChosen);
}

void HostWindow::setUpLog(EventLog &log)
{
    m_log->setObjectName(QStringLiteral("log"));
    m_log->setReadOnly(true);
    m_log->setMaximumBlockCount(kLogLines);
    m_log->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_log->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_log->setTabChangesFocus(true);
    m_log->setMinimumHeight(kLogHeight);
    m_log->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_logTitle->setObjectName(QStringLiteral("logTitle"));
    m_logTitle->setIndent(kTitleIndent);
    m_logTitle->setBuddy(m_log);
    connect(&log, &EventLog::recorded, this, &HostWindow::appendToLog, Qt::QueuedConnection);
}

// Follows the end while the end is in view.
void HostWindow::appendToLog(const QString &line)
{
    QScrollBar *bar = m_log->verticalScrollBar();
    const bool follows = bar->value() == bar->maximum();
    m_log->appendPlainText(line);
    if (follows)
        bar->setValue(bar->maximum());
}

void HostWindow::arrange()
{
    auto *upper = new QHBoxLayout;
    upper->setSpacing(kSpacing);
    upper->addWidget(m_frame, 0, Qt::AlignTop);
    upper->addWidget(m_controls, 1);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(kSpacing, kSpacing, kSpacing, kSpacing);
    column->addLayout(upper);
    column->addWidget(m_controls->panelGroup());
    column->addWidget(m_logTitle);
    column->addWidget(m_log, 1);
}

QWidget *HostWindow::panelFrame() const
{
    return m_frame;
}

void HostWindow::setEnglish(bool english)
{
    setWindowTitle(textOf(Text::WindowTitle, english));
    m_logTitle->setText(textOf(Text::Log, english));
    m_log->setAccessibleName(textOf(Text::Log, english));
    m_frame->setHint(textOf(Text::PanelClosed, english));
    m_controls->setEnglish(english);
}

} // namespace host
