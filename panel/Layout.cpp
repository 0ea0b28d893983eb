// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Creates the panel's children, once, at the places of the source language (panel/Places.h). Screens only
// show, hide, move and re-text them afterwards; retranslateUI() moves what another language needs elsewhere.
// Every child carries the name of its member as object name. Called by the constructor.

#include "panel/Colours.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/LanguageTable.h"
#include "panel/Pictures.h"
#include "panel/Places.h"
#include "panel/Styles.h"
#include "panel/Texts.h"
#include "panel/Visibility.h"
#include "widgets/SharpMovieLabel.h"
#include "widgets/WholeLinesEdit.h"

#include <QLabel>
#include <QMovie>
#include <QPushButton>
#include <QTextEdit>

namespace QuillonFirmwareUpgrade {

namespace {
void setUp(QLabel *label, const char *name, const Place &place, const QString &style)
{
    label->setObjectName(QLatin1String(name));
    label->setGeometry(place.in(sourceLanguage()));
    if (!style.isEmpty())
        label->setStyleSheet(style);
}

QLabel *addLabel(QWidget *parent, const char *name, const Place &place, const QString &style = {},
                 const QString &text = {})
{
    auto *label = new QLabel(text, parent);
    setUp(label, name, place, style);
    return label;
}

QLabel *addPicture(QWidget *parent, const char *name, const char *file, const Place &place,
                   const QString &style = Styles::kTransparent)
{
    QLabel *label = addLabel(parent, name, place, style);
    label->setPixmap(Pictures::scaled(file, place.in(sourceLanguage()).size()));
    return label;
}
} // namespace

void FirmwareUpgradeWidget::setupUI()
{
    createTitleBar();
    createVersionCard();
    createNotes();
    createBar();
    createConnectionHint();
    createFailureLine();
    createOfflineToolLine();
    // What to do about a failure, or about a firmware that is too old, lies over the last pixels of the
    // notes.
    for (QLabel *advice : {m_failIconLb, m_offlineToolIconLb})
        static_cast<WholeLinesEdit *>(m_notesEdit)->keepClearOf(advice);
    makeAccessible();
}

void FirmwareUpgradeWidget::createTitleBar()
{
    m_titleLabel
        = addLabel(this, "m_titleLabel", Places::kTitle, Styles::label(Styles::kTitle), tr(Texts::kTitle));

    m_closeBtn = new QPushButton(this);
    m_closeBtn->setObjectName(QStringLiteral("m_closeBtn"));
    m_closeBtn->setGeometry(Places::kCloseButton.in(sourceLanguage()));
    m_closeBtn->setStyleSheet(Styles::kCloseButton);
    connect(m_closeBtn, &QPushButton::clicked, this, &QWidget::close);
}

void FirmwareUpgradeWidget::createVersionCard()
{
    using Styles::label;
    verCompLb = addLabel(this, "verCompLb", Places::kVersionCard, Styles::kCard);
    addPicture(verCompLb, "cardAccentLb", "blue_rect.png", Places::kCardAccent);
    addLabel(verCompLb, "cardDividerLb", Places::kCardDivider, Styles::kLine);

    m_noNewFirmwareLb = addLabel(verCompLb, "m_noNewFirmwareLb", Places::kUpToDate,
                                 label(Styles::kNoNewFirmware), tr(Texts::kUpToDate));
    m_noNewFirmwareLb->setWordWrap(true);
    m_newVerTitleLb = addLabel(verCompLb, "m_newVerTitleLb", Places::kNewVersionTitle,
                               label(Styles::kNewVersionTitle), tr(Texts::kNewVersion));
    m_newVerDotLb
        = addPicture(verCompLb, "m_newVerDotLb", "green_circle.png", Places::kNewVersionDot, QString());
    m_newVerLb = addLabel(verCompLb, "m_newVerLb", Places::kNewVersion, label(Styles::kNewVersion),
                          tr(Texts::kUnknown));
    m_curVerTitleLb = addLabel(verCompLb, "m_curVerTitleLb", Places::kCurrentVersionTitle,
                               label(Styles::kCurrentTitle), tr(Texts::kCurrentVersion));
    m_curVerLb = addLabel(verCompLb, "m_curVerLb", Places::kCurrentVersion, label(Styles::kCurrentVersion),
                          tr(Texts::kUnknown));
    // Versions come from the server and the device: they are shown as text, whatever they contain.
    m_newVerLb->setTextFormat(Qt::PlainText);
    m_curVerLb->setTextFormat(Qt::PlainText);
    hideAll({m_noNewFirmwareLb, m_newVerTitleLb, m_newVerDotLb, m_newVerLb});
}

void FirmwareUpgradeWidget::createNotes()
{
    m_notesIconLb = addPicture(this, "m_notesIconLb", "book.png", Places::kNotesIcon);
    m_notesTitleLb = addLabel(this, "m_notesTitleLb", Places::kNotesTitle, Styles::label(Styles::kNotesTitle),
                              tr(Texts::kNotesTitle));
    m_notesLineLb = addLabel(this, "m_notesLineLb", Places::kNotesLine, Styles::kLine);

    m_notesEdit = new WholeLinesEdit(this);
    m_notesEdit->setObjectName(QStringLiteral("m_notesEdit"));
    m_notesEdit->setGeometry(Places::kNotes.in(sourceLanguage()));
    m_notesEdit->setStyleSheet(Styles::notes(sourceLanguage().family));
    m_notesEdit->setPlainText(QStringLiteral("--"));
}

void FirmwareUpgradeWidget::createBar()
{
    using Styles::label;
    m_progressBar = new ClickableProgressBar(this);
    m_progressBar->setObjectName(QStringLiteral("m_progressBar"));
    m_progressBar->setGeometry(Places::kBar.in(sourceLanguage()));
    m_progressBar->setRange(0, 100);
    m_progressBar->setValue(0);
    m_progressBar->setTextVisible(true);
    connect(m_progressBar, &ClickableProgressBar::clicked, this, [this] { onUpgradeClicked(); });

    m_rocketLb = addPicture(m_progressBar, "m_rocketLb", "rocket.png", Places::kRocket);
    m_upgradeTextLb = addLabel(m_progressBar, "m_upgradeTextLb", Places::kUpgradeBesideRocket,
                               label(Styles::kBarAtStart), tr(Texts::kUpgradeNow));
    m_tooOldLb
        = addLabel(m_progressBar, "m_tooOldLb", Places::kTooOld, label(Styles::kTooOld), tr(Texts::kTooOld));
    m_tooOldLb->setAlignment(Qt::AlignCenter);
    upgradeProgDisPlay = addLabel(this, "upgradeProgDisPlay", Places::kPercent, label(Styles::kPercent));
    m_waitingIconLb = addPicture(m_progressBar, "m_waitingIconLb", "waitting.png", Places::kUpgradingIcon);
    m_upgradingLb = addLabel(m_progressBar, "m_upgradingLb", Places::kUpgradingText,
                             label(Styles::kUpgrading), tr(Texts::kUpgrading));
    m_doneIconLb = addPicture(m_progressBar, "m_doneIconLb", "check_mark.png", Places::kDoneIcon);
    m_doneLb = addLabel(m_progressBar, "m_doneLb", Places::kDone, label(Styles::kDone), tr(Texts::kDone));
    hideAll(
        {m_rocketLb, m_upgradeTextLb, m_tooOldLb, m_waitingIconLb, m_upgradingLb, m_doneIconLb, m_doneLb});
}

void FirmwareUpgradeWidget::createConnectionHint()
{
    tipMoiveLb = new SharpMovieLabel(this);
    setUp(tipMoiveLb, "tipMoiveLb", Places::kMovie, Styles::kTransparent);
    loadTipMovie(Port::Pc);
    m_detectingUsbLb = addLabel(this, "m_detectingUsbLb", Places::kDetecting,
                                Styles::label(Styles::kDetecting), tr(Texts::kDetectingUsb));
    m_detectingUsbLb->setAlignment(Qt::AlignCenter);
    m_connectHintLb = addLabel(this, "m_connectHintLb", Places::kConnectHint,
                               Styles::label(Styles::kConnectHint), connectionHint(Port::Pc));
    m_connectHintLb->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_connectHintLb->setWordWrap(true);
    hideAll({tipMoiveLb, m_detectingUsbLb, m_connectHintLb});
}

void FirmwareUpgradeWidget::createFailureLine()
{
    m_failIconLb = addPicture(this, "m_failIconLb", "exclamation_mark.png", Places::kFailureIcon);
    m_failTextLb = addLabel(this, "m_failTextLb", Places::kFailureText, Styles::label(Styles::kFailure),
                            tr(Texts::kFailed));
    m_failTextLb->setAlignment(Qt::AlignCenter);
    hideAll({m_failIconLb, m_failTextLb});
}

void FirmwareUpgradeWidget::createOfflineToolLine()
{
    m_offlineToolTipLb = addLabel(this, "m_offlineToolTipLb", Places::kOfflineToolText,
                                  Styles::label(Styles::kOfflineTool), tr(Texts::kUseOfflineTool));
    m_offlineToolIconLb
        = addPicture(this, "m_offlineToolIconLb", "exclamation_mark.png", Places::kOfflineToolIcon);
    m_offlineToolIconLb->setFixedSize(24, 24);
    m_offlineToolLinkLb = addLabel(this, "m_offlineToolLinkLb", Places::kOfflineToolLink,
                                   Styles::offlineToolLink(sourceLanguage().family), offlineToolLink(false));
    m_offlineToolLinkLb->setTextFormat(Qt::RichText);
    m_offlineToolLinkLb->setOpenExternalLinks(true);
    m_offlineToolLinkLb->setCursor(Qt::PointingHandCursor);
    m_offlineToolLinkLb->adjustSize();
    m_offlineToolLinkLb->installEventFilter(this);
    // Where it will be shown: a link that appeared under the pointer and moved away would stay underlined.
    m_offlineToolTipLb->adjustSize();
    placeOfflineToolLine();
    hideAll({m_offlineToolTipLb, m_offlineToolIconLb, m_offlineToolLinkLb});
}

} // namespace QuillonFirmwareUpgrade
