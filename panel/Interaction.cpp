// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The frameless window is dragged by its top strip, and the download link underlines itself under the
// pointer. m_dragging is set by a press on the strip and cleared by the next release. Called by Qt.

#include "net/UpdateServer.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/Texts.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

namespace QuillonFirmwareUpgrade {

namespace {
constexpr int kDragStripHeight = 40;
}

void FirmwareUpgradeWidget::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (event->button() == Qt::LeftButton && position.y() < kDragStripHeight
        && !m_closeBtn->geometry().contains(position)) {
        m_dragging = true;
        m_dragPosition = event->globalPosition().toPoint() - frameGeometry().topLeft();
        event->accept();
        return;
    }
    QWidget::mousePressEvent(event);
}

void FirmwareUpgradeWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (m_dragging) {
        move(event->globalPosition().toPoint() - m_dragPosition);
        event->accept();
        return;
    }
    QWidget::mouseMoveEvent(event);
}

void FirmwareUpgradeWidget::mouseReleaseEvent(QMouseEvent *event)
{
    m_dragging = false;
    QWidget::mouseReleaseEvent(event);
}

bool FirmwareUpgradeWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_offlineToolLinkLb) {
        if (event->type() == QEvent::Enter)
            m_offlineToolLinkLb->setText(offlineToolLink(true));
        else if (event->type() == QEvent::Leave)
            m_offlineToolLinkLb->setText(offlineToolLink(false));
    }
    return QWidget::eventFilter(watched, event);
}

QString FirmwareUpgradeWidget::offlineToolAddress() const
{
    return offlineToolHost() + QStringLiteral("/limit/R1_R2%20Firmware%20Upgrade%20Tool.exe");
}

QString FirmwareUpgradeWidget::offlineToolLink(bool underlined) const
{
    const QString decoration = underlined ? QStringLiteral("underline") : QStringLiteral("none");
    return QStringLiteral("<a style='color:rgba(87,110,246,1); text-decoration:") + decoration
        + QStringLiteral("; font-weight:700;' href='") + offlineToolAddress() + QStringLiteral("'>")
        + tr(Texts::kDownloadOfflineTool) + QStringLiteral("</a>");
}

} // namespace QuillonFirmwareUpgrade
