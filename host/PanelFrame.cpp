// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/PanelFrame.h"

#include "host/Style.h"

#include <QEvent>
#include <QPainter>

namespace host {

namespace {
constexpr QSize kPanelSize{472, 418};
constexpr qreal kRadius = 4;
} // namespace

PanelFrame::PanelFrame(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(kPanelSize);
}

void PanelFrame::setPanel(QWidget *panel)
{
    if (m_panel)
        m_panel->removeEventFilter(this);
    m_panel = panel;
    if (m_panel)
        m_panel->installEventFilter(this);
}

void PanelFrame::setHint(const QString &hint)
{
    m_hint = hint;
    update();
}

bool PanelFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_panel && event->type() == QEvent::Move && !m_panel->pos().isNull())
        m_panel->move(0, 0);
    return QWidget::eventFilter(watched, event);
}

void PanelFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Colours::kCard);
    painter.drawRoundedRect(rect(), kRadius, kRadius);
    painter.setPen(Colours::kFaintText);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_hint);
}

} // namespace host
