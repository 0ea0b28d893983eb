// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the panel shows in each state: a choice of which children are visible, what they say, and how the bar
// looks and reacts. The failure screen sets m_inFailureRetry and m_autoRecoverRunning and clears
// m_isUpgrading; the waiting screen sets m_isWaitingForUSB. Called by version reading, the sequence, the
// recovery, the flashing tool and its monitor.

#include "device/ModelTable.h"
#include "flash/StallRule.h"
#include "net/networking_class.h"
#include "panel/Colours.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/ForeignText.h"
#include "panel/Places.h"
#include "panel/Styles.h"
#include "panel/Texts.h"
#include "panel/Visibility.h"
#include "system/Log.h"
#include "widgets/SharpMovieLabel.h"

#include <QLabel>
#include <QMovie>
#include <QPointer>
#include <QTextEdit>

namespace QuillonFirmwareUpgrade {

namespace {
constexpr double kRetryBorderWidth = 2.0;

QString versionText(const QString &version)
{
    return u'V' + ForeignText::shownVersion(version);
}
} // namespace

void FirmwareUpgradeWidget::updateUIByUpgradeState()
{
    if (m_inFailureRetry && m_autoRecoverRunning) {
        Log::panel() << "[updateUIByUpgradeState] 当前处于失败重试状态，跳过UI更新";
        return;
    }
    if (!m_remotePcVersion.isEmpty())
        m_newVerLb->setText(versionText(m_remotePcVersion));
    if (!m_devicePcVersion.isEmpty())
        m_curVerLb->setText(versionText(m_devicePcVersion));

    if (m_upgradePlan == UpgradePlan::None)
        showUpToDateScreen();
    else if (isUpgradePlanned() && isTooOldForPanel() && !m_autoRecoverRunning)
        showTooOldScreen();
    else if (isUpgradePlanned())
        showUpgradeAvailableScreen();
}

void FirmwareUpgradeWidget::showTooOldScreen()
{
    m_progressBar->setBackgroundColor(Colours::kBarBlocked);
    m_progressBar->setClickable(false);
    hideAll({m_rocketLb, m_upgradeTextLb});
    m_tooOldLb->show();
    m_tooOldLb->raise();
    hideAll({upgradeProgDisPlay, m_noNewFirmwareLb});
    showAll({m_newVerTitleLb, m_newVerDotLb, m_newVerLb});
    hideAll({m_doneIconLb, m_doneLb});
    showAll({m_offlineToolIconLb, m_offlineToolTipLb, m_offlineToolLinkLb});
    m_offlineToolTipLb->adjustSize();
    m_offlineToolLinkLb->adjustSize();
    placeOfflineToolLine();
    showServerVersion();
    if (fetchReleaseNotes() == PanelIs::Gone)
        return;
    showReleaseNotes();
    Log::panel() << "[VersionCheck] firmware too old, upgrade blocked. PC:" << m_devicePcVersion
                 << " OTG:" << m_deviceOtgVersion;
}

void FirmwareUpgradeWidget::showUpgradeAvailableScreen()
{
    m_progressBar->setBackgroundColor(Colours::kBarReady);
    m_progressBar->setValue(0);
    m_progressBar->setClickable(true);
    m_progressBar->clearBorder();
    takeFocusFrom(m_offlineToolLinkLb);
    hideAll({m_tooOldLb, m_offlineToolIconLb, m_offlineToolTipLb, m_offlineToolLinkLb, m_doneIconLb, m_doneLb,
             m_waitingIconLb, m_upgradingLb, m_failIconLb, m_failTextLb, upgradeProgDisPlay});
    m_upgradeTextLb->setText(tr(Texts::kUpgradeNow));
    m_rocketLb->show();
    m_upgradeTextLb->setGeometry(Places::kUpgradeBesideRocket.in(shownLanguage()));
    m_upgradeTextLb->show();
    Styles::give(*m_upgradeTextLb, Styles::label(Styles::kBarReady));
    m_upgradeTextLb->raise();
    m_noNewFirmwareLb->hide();
    showAll({m_newVerTitleLb, m_newVerDotLb, m_newVerLb});
    showServerVersion();
    if (fetchReleaseNotes() == PanelIs::Gone)
        return;
    Log::panel() << "######22222 isChinese is: " << isChinese
                 << " current notes is: " << currentReleaseNotes();
    showReleaseNotes();
}

void FirmwareUpgradeWidget::showUpToDateScreen()
{
    m_progressBar->setBackgroundColor(Colours::kBarIdle);
    takeFocusFrom(m_offlineToolLinkLb);
    hideAll({m_tooOldLb, m_offlineToolIconLb, m_offlineToolTipLb, m_offlineToolLinkLb});
    m_noNewFirmwareLb->show();
    hideAll({m_newVerTitleLb, m_newVerDotLb, m_newVerLb, m_doneIconLb, m_doneLb, m_rocketLb});
    m_notesEdit->setPlainText(QStringLiteral("--"));
    m_upgradeTextLb->setText(tr(Texts::kUpgradeNow));
    m_upgradeTextLb->setGeometry(Places::kUpgradeAlone.in(shownLanguage()));
    Styles::give(*m_upgradeTextLb, Styles::label(Styles::kBarDimmed));
    m_upgradeTextLb->show();
    upgradeProgDisPlay->hide();
}

/// Centres the line of icon, text and link under the bar's left part.
void FirmwareUpgradeWidget::placeOfflineToolLine()
{
    constexpr int kLineTop = 319;
    constexpr int kIconStep = 28;
    const int textWidth = m_offlineToolTipLb->width();
    const int left = (380 - m_offlineToolLinkLb->width() - textWidth) / 2 + 32;
    m_offlineToolIconLb->move(left, (m_offlineToolTipLb->height() - 24) / 2 + kLineTop);
    m_offlineToolTipLb->move(left + kIconStep, kLineTop);
    m_offlineToolLinkLb->move(left + kIconStep + textWidth, kLineTop);
}

/// A version that could not be read is no news: the label keeps what it shows.
void FirmwareUpgradeWidget::showServerVersion()
{
    if (!m_remotePcVersion.isEmpty() && m_remotePcVersion != networking_class::failedQuery())
        m_newVerLb->setText(versionText(m_remotePcVersion));
}

/// Has the update client fetch the notes of the newest PC firmware; blocks for at most about 2 s.
FirmwareUpgradeWidget::PanelIs FirmwareUpgradeWidget::fetchReleaseNotes()
{
    m_notesEdit->show();
    const QPointer<FirmwareUpgradeWidget> alive(this);
    networking_class::getInstance()->getVersion(pcVersionUrl());
    return alive ? PanelIs::Alive : PanelIs::Gone;
}

void FirmwareUpgradeWidget::showReleaseNotes()
{
    const QString notes = currentReleaseNotes();
    if (!notes.isEmpty())
        m_notesEdit->setPlainText(notes);
}

void FirmwareUpgradeWidget::showUpgradeFailureUI()
{
    if (m_upgradePlan == UpgradePlan::Both && pcUpgradeCompleted)
        m_upgradePlan = UpgradePlan::OtgOnly;
    m_inFailureRetry = true;
    m_isUpgrading = false;
    m_autoRecoverRunning = true;
    hideConnectionHint();
    showCardAndNotes(true);
    hideAll({upgradeProgDisPlay});
    if (m_progressBar) {
        showProgress(0);
        resetStallDetector();
    }
    showRetryOffer();
}

void FirmwareUpgradeWidget::showRetryOffer()
{
    if (m_progressBar) {
        m_progressBar->setBackgroundColor(Colours::kBarRetry);
        m_progressBar->setBorderColor(Colours::kBarRetryBorder);
        m_progressBar->setBorderWidth(kRetryBorderWidth);
        m_progressBar->setClickable(true);
    }
    showAll({m_failIconLb, m_failTextLb});
    hideAll({m_rocketLb, m_waitingIconLb, m_upgradingLb});
    m_upgradeTextLb->setText(tr(Texts::kRetry));
    Styles::give(*m_upgradeTextLb, Styles::retryText(fontFamily()));
    m_upgradeTextLb->setGeometry(Places::kRetry.in(shownLanguage()));
    m_upgradeTextLb->show();
}

bool FirmwareUpgradeWidget::isRetryScreen() const
{
    return m_inFailureRetry && m_autoRecoverRunning && !m_isUpgrading;
}

void FirmwareUpgradeWidget::updateWaitingLabelLayout()
{
    const LanguageRow &language = shownLanguage();
    m_upgradingLb->setText(tr(m_isWaitingForUSB ? Texts::kWaitingForCable : Texts::kUpgrading));
    m_waitingIconLb->setGeometry(
        (m_isWaitingForUSB ? Places::kWaitingIcon : Places::kUpgradingIcon).in(language));
    m_upgradingLb->setGeometry(
        (m_isWaitingForUSB ? Places::kWaitingText : Places::kUpgradingText).in(language));
}

void FirmwareUpgradeWidget::showWaitingScreen(Port port)
{
    showCardAndNotes(false);
    loadTipMovie(port);
    tipMoiveLb->show();
    m_tipMovie->start();
    m_detectingUsbLb->setText(detectingText(port));
    m_connectHintLb->setText(connectionHint(port));
    showAll({m_detectingUsbLb, m_connectHintLb});
    if (m_progressBar)
        m_progressBar->setBackgroundColor(Colours::kBarIdle);
    hideAll({m_rocketLb, m_upgradeTextLb});
    m_isWaitingForUSB = true;
    updateWaitingLabelLayout();
    showAll({m_waitingIconLb, m_upgradingLb});
}

void FirmwareUpgradeWidget::hideConnectionHint()
{
    if (m_tipMovie)
        m_tipMovie->stop();
    hideAll({tipMoiveLb, m_detectingUsbLb, m_connectHintLb});
}

void FirmwareUpgradeWidget::showCardAndNotes(bool visible)
{
    if (!visible)
        takeFocusFrom(m_notesEdit);
    setAllVisible(visible, {verCompLb, m_notesEdit, m_notesIconLb, m_notesTitleLb, m_notesLineLb});
}

/// Puts the animation of the port and the model on its label, not yet running. The movie before it stays the
/// label's; those before that one go, for each that was played keeps two megabytes of its last frame.
void FirmwareUpgradeWidget::loadTipMovie(Port port)
{
    const ModelRow &model = rowOf(m_deviceModel);
    if (m_tipMovie)
        m_tipMovie->stop();
    for (QMovie *movie : tipMoiveLb->findChildren<QMovie *>(Qt::FindDirectChildrenOnly)) {
        if (movie != m_tipMovie)
            delete movie;
    }
    m_tipMovie = new QMovie(QStringLiteral(":/new/prefix1/image/")
                                + (port == Port::Otg ? model.otg.movie : model.pc.movie),
                            QByteArray(), tipMoiveLb);
    static_cast<SharpMovieLabel *>(tipMoiveLb)->setMovie(m_tipMovie);
}

void FirmwareUpgradeWidget::showProgress(int percent)
{
    if (m_progressBar)
        m_progressBar->setValue(percent);
    upgradeProgDisPlay->setText(QString::number(percent) + u'%');
}

void FirmwareUpgradeWidget::resetStallDetector()
{
    m_lastProgressPercent = StallRule::kNothingYet;
    m_lastProgressTime = QDateTime();
}

} // namespace QuillonFirmwareUpgrade
