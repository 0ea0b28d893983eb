// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiled without access control, so that no test has to be.
#include "tests/panel/OpenPanel.h"

#include "widgets/ClickableProgressBar.h"

#include <QLabel>
#include <QMovie>
#include <QPushButton>
#include <QTextEdit>

// ---- Widgets ----

QLabel *OpenPanel::title() const
{
    return m_titleLabel;
}

QPushButton *OpenPanel::closeButton() const
{
    return m_closeBtn;
}

QLabel *OpenPanel::card() const
{
    return verCompLb;
}

QLabel *OpenPanel::noNewFirmware() const
{
    return m_noNewFirmwareLb;
}

QLabel *OpenPanel::newVersionTitle() const
{
    return m_newVerTitleLb;
}

QLabel *OpenPanel::newVersionDot() const
{
    return m_newVerDotLb;
}

QLabel *OpenPanel::newVersion() const
{
    return m_newVerLb;
}

QLabel *OpenPanel::currentVersionTitle() const
{
    return m_curVerTitleLb;
}

QLabel *OpenPanel::currentVersion() const
{
    return m_curVerLb;
}

QLabel *OpenPanel::notesIcon() const
{
    return m_notesIconLb;
}

QLabel *OpenPanel::notesTitle() const
{
    return m_notesTitleLb;
}

QLabel *OpenPanel::notesLine() const
{
    return m_notesLineLb;
}

QTextEdit *OpenPanel::notes() const
{
    return m_notesEdit;
}

QLabel *OpenPanel::animation() const
{
    return tipMoiveLb;
}

QMovie *OpenPanel::movie() const
{
    return m_tipMovie;
}

QLabel *OpenPanel::detectingText() const
{
    return m_detectingUsbLb;
}

QLabel *OpenPanel::cableHint() const
{
    return m_connectHintLb;
}

QLabel *OpenPanel::failureIcon() const
{
    return m_failIconLb;
}

QLabel *OpenPanel::failureText() const
{
    return m_failTextLb;
}

QLabel *OpenPanel::offlineToolTip() const
{
    return m_offlineToolTipLb;
}

QLabel *OpenPanel::offlineToolIcon() const
{
    return m_offlineToolIconLb;
}

QLabel *OpenPanel::offlineToolLink() const
{
    return m_offlineToolLinkLb;
}

// ---- The bar and what stands on it ----

ClickableProgressBar *OpenPanel::bar() const
{
    return m_progressBar;
}

QColor OpenPanel::barBackground() const
{
    return m_progressBar->m_backgroundColor;
}

QColor OpenPanel::barBorder() const
{
    return m_progressBar->m_borderColor;
}

double OpenPanel::barBorderWidth() const
{
    return m_progressBar->m_borderWidth;
}

QLabel *OpenPanel::rocket() const
{
    return m_rocketLb;
}

QLabel *OpenPanel::upgradeText() const
{
    return m_upgradeTextLb;
}

QLabel *OpenPanel::tooOldText() const
{
    return m_tooOldLb;
}

QLabel *OpenPanel::percentText() const
{
    return upgradeProgDisPlay;
}

QLabel *OpenPanel::waitingIcon() const
{
    return m_waitingIconLb;
}

QLabel *OpenPanel::waitingText() const
{
    return m_upgradingLb;
}

QLabel *OpenPanel::doneIcon() const
{
    return m_doneIconLb;
}

QLabel *OpenPanel::doneText() const
{
    return m_doneLb;
}
