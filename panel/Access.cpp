// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What people who work with the keyboard or with a screen reader need: an order of the controls, a sign of
// where the focus is, keys for the bar, names for what has no words on it. Called by setupUI() and
// retranslateUI().

#include "panel/FirmwareUpgradeWidget.h"
#include "panel/LanguageTable.h"
#include "panel/Texts.h"
#include "widgets/BarAccess.h"
#include "widgets/ClickableProgressBar.h"
#include "widgets/FocusRing.h"
#include "widgets/PressKeys.h"
#include "widgets/WholeLinesEdit.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QUrl>

namespace QuillonFirmwareUpgrade {

namespace {
constexpr double kBarRingInset = 4;
constexpr double kBarRingRadius = 19;
constexpr double kCornerRadius = 4;
/// Thinner than on a button: the text begins four pixels inside its box.
constexpr double kNotesRingWidth = 1;
} // namespace

void FirmwareUpgradeWidget::makeAccessible()
{
    BarAccess::install();
    new PressKeys(m_progressBar, [bar = m_progressBar] {
        if (bar->isClickable())
            Q_EMIT bar->clicked();
    });
    new PressKeys(m_offlineToolLinkLb, [this] { QDesktopServices::openUrl(QUrl(offlineToolAddress())); });
    // Outside a dialog a button answers Space only.
    new PressKeys(m_closeBtn, [button = m_closeBtn] { button->click(); });
    new FocusRing(m_progressBar, kBarRingInset, kBarRingRadius);
    new FocusRing(m_closeBtn, 0, kCornerRadius);
    new FocusRing(m_offlineToolLinkLb, 0, kCornerRadius);
    auto *notes = static_cast<WholeLinesEdit *>(m_notesEdit);
    new FocusRing(
        notes, [notes] { return notes->outline(); }, kCornerRadius, kNotesRingWidth);
    // As it is read. The notes have the focus when the window gets it: no key does harm there. The close
    // button, the first child, has to be moved behind them before anything can be put in front of it.
    setTabOrder(m_notesEdit, m_closeBtn);
    setTabOrder(m_notesEdit, m_offlineToolLinkLb);
    setTabOrder(m_offlineToolLinkLb, m_progressBar);
}

void FirmwareUpgradeWidget::nameForScreenReaders()
{
    setAccessibleName(tr(Texts::kTitle));
    m_closeBtn->setAccessibleName(shownLanguage().closeButton);
    m_notesEdit->setAccessibleName(tr(Texts::kNotesTitle));
    m_offlineToolLinkLb->setAccessibleName(tr(Texts::kUseOfflineTool) + tr(Texts::kDownloadOfflineTool));
    // For the moments in which there are no words on it.
    m_progressBar->setAccessibleName(tr(Texts::kTitle));
}

/// For a control that is about to be hidden. Left to itself its focus would go on to the bar, at once or when
/// the window is next active, and the next key press would count there.
void FirmwareUpgradeWidget::takeFocusFrom(QWidget *control)
{
    if (control && window()->focusWidget() == control)
        setFocus(Qt::OtherFocusReason);
}

} // namespace QuillonFirmwareUpgrade
