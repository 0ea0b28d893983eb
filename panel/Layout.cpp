// Creates the panel's children, once, at fixed positions. Screens only show, hide, move and re-text them
// afterwards. Positions here are those of the source language; retranslateUI() moves what another language
// needs elsewhere. Every child carries the name of its member as object name. Called by the constructor.

#include "panel/Colours.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/Styles.h"
#include "panel/Texts.h"
#include "panel/Visibility.h"
#include "widgets/WholeLinesEdit.h"

#include <QIcon>
#include <QLabel>
#include <QMovie>
#include <QPushButton>
#include <QTextEdit>

namespace QuillonFirmwareUpgrade {

namespace {
QLabel *addLabel(QWidget *parent, const char *name, const QRect &geometry, const QString &style = {},
                 const QString &text = {})
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(name));
    label->setGeometry(geometry);
    if (!style.isEmpty())
        label->setStyleSheet(style);
    return label;
}

QLabel *addPicture(QWidget *parent, const char *name, const char *file, const QRect &geometry,
                   const QString &style = Styles::kTransparent)
{
    QLabel *label = addLabel(parent, name, geometry, style);
    label->setPixmap(
        QIcon(QStringLiteral(":/new/prefix1/image/") + QLatin1String(file)).pixmap(geometry.size()));
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
        = addLabel(this, "m_titleLabel", {24, 16, 130, 19}, Styles::label(Styles::kTitle), tr(Texts::kTitle));

    m_closeBtn = new QPushButton(this);
    m_closeBtn->setObjectName(QStringLiteral("m_closeBtn"));
    m_closeBtn->setGeometry(436, 12, 24, 24);
    m_closeBtn->setStyleSheet(Styles::kCloseButton);
    connect(m_closeBtn, &QPushButton::clicked, this, &QWidget::close);
}

void FirmwareUpgradeWidget::createVersionCard()
{
    using Styles::label;
    verCompLb = addLabel(this, "verCompLb", {32, 55, 408, 80}, Styles::kCard);
    addPicture(verCompLb, "cardAccentLb", "blue_rect.png", {0, 0, 4, 80});
    addLabel(verCompLb, "cardDividerLb", {187, 20, 1, 40}, Styles::kLine);

    m_noNewFirmwareLb = addLabel(verCompLb, "m_noNewFirmwareLb", {24, 29, 150, 21},
                                 label(Styles::kNoNewFirmware), tr(Texts::kUpToDate));
    m_noNewFirmwareLb->setWordWrap(true);
    m_newVerTitleLb = addLabel(verCompLb, "m_newVerTitleLb", {24, 16, 42, 19},
                               label(Styles::kNewVersionTitle), tr(Texts::kNewVersion));
    m_newVerDotLb = addPicture(verCompLb, "m_newVerDotLb", "green_circle.png", {24, 47, 9, 9}, QString());
    m_newVerLb = addLabel(verCompLb, "m_newVerLb", {39, 38, 80, 26}, label(Styles::kNewVersion),
                          tr(Texts::kUnknown));
    m_curVerTitleLb = addLabel(verCompLb, "m_curVerTitleLb", {207, 16, 56, 19}, label(Styles::kCurrentTitle),
                               tr(Texts::kCurrentVersion));
    m_curVerLb = addLabel(verCompLb, "m_curVerLb", {208, 42, 55, 19}, label(Styles::kCurrentVersion),
                          tr(Texts::kUnknown));
    // Versions come from the server and the device: they are shown as text, whatever they contain.
    m_newVerLb->setTextFormat(Qt::PlainText);
    m_curVerLb->setTextFormat(Qt::PlainText);
    hideAll({m_noNewFirmwareLb, m_newVerTitleLb, m_newVerDotLb, m_newVerLb});
}

void FirmwareUpgradeWidget::createNotes()
{
    m_notesIconLb = addPicture(this, "m_notesIconLb", "book.png", {32, 160, 20, 20});
    m_notesTitleLb = addLabel(this, "m_notesTitleLb", {60, 159, 64, 21}, Styles::label(Styles::kNotesTitle),
                              tr(Texts::kNotesTitle));
    m_notesLineLb = addLabel(this, "m_notesLineLb", {32, 192, 408, 1}, Styles::kLine);

    m_notesEdit = new WholeLinesEdit(this);
    m_notesEdit->setObjectName(QStringLiteral("m_notesEdit"));
    m_notesEdit->setGeometry(32, 204, 428, 119);
    m_notesEdit->setStyleSheet(Styles::notes(Styles::kChineseFamily));
    m_notesEdit->setPlainText(QStringLiteral("--"));
}

void FirmwareUpgradeWidget::createBar()
{
    using Styles::label;
    m_progressBar = new ClickableProgressBar(this);
    m_progressBar->setObjectName(QStringLiteral("m_progressBar"));
    m_progressBar->setGeometry(32, 346, 408, 48);
    m_progressBar->setRange(0, 100);
    m_progressBar->setValue(0);
    m_progressBar->setTextVisible(true);
    connect(m_progressBar, &ClickableProgressBar::clicked, this, [this] { onUpgradeClicked(); });

    m_rocketLb = addPicture(m_progressBar, "m_rocketLb", "rocket.png", {158, 14, 20, 20});
    m_upgradeTextLb = addLabel(m_progressBar, "m_upgradeTextLb", {186, 13, 64, 21},
                               label(Styles::kBarAtStart), tr(Texts::kUpgradeNow));
    m_tooOldLb
        = addLabel(m_progressBar, "m_tooOldLb", {0, 0, 408, 48}, label(Styles::kTooOld), tr(Texts::kTooOld));
    m_tooOldLb->setAlignment(Qt::AlignCenter);
    upgradeProgDisPlay = addLabel(this, "upgradeProgDisPlay", {218, 323, 38, 19}, label(Styles::kPercent));
    m_waitingIconLb = addPicture(m_progressBar, "m_waitingIconLb", "waitting.png", {101, 12, 24, 24});
    m_upgradingLb = addLabel(m_progressBar, "m_upgradingLb", {133, 13, 174, 21}, label(Styles::kUpgrading),
                             tr(Texts::kUpgrading));
    m_doneIconLb = addPicture(m_progressBar, "m_doneIconLb", "check_mark.png", {156, 12, 24, 24});
    m_doneLb = addLabel(m_progressBar, "m_doneLb", {188, 13, 64, 21}, label(Styles::kDone), tr(Texts::kDone));
    hideAll(
        {m_rocketLb, m_upgradeTextLb, m_tooOldLb, m_waitingIconLb, m_upgradingLb, m_doneIconLb, m_doneLb});
}

void FirmwareUpgradeWidget::createConnectionHint()
{
    tipMoiveLb = addLabel(this, "tipMoiveLb", {32, 59, 408, 128}, Styles::kTransparent);
    tipMoiveLb->setScaledContents(true);
    loadTipMovie(Port::Pc);
    m_detectingUsbLb = addLabel(this, "m_detectingUsbLb", {122, 203, 229, 21},
                                Styles::label(Styles::kDetecting), tr(Texts::kDetectingUsb));
    m_detectingUsbLb->setAlignment(Qt::AlignCenter);
    m_connectHintLb = addLabel(this, "m_connectHintLb", {59, 232, 352, 57},
                               Styles::label(Styles::kConnectHint), connectionHint(Port::Pc));
    m_connectHintLb->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_connectHintLb->setWordWrap(true);
    hideAll({tipMoiveLb, m_detectingUsbLb, m_connectHintLb});
}

void FirmwareUpgradeWidget::createFailureLine()
{
    m_failIconLb = addPicture(this, "m_failIconLb", "exclamation_mark.png", {95, 317, 24, 24});
    m_failTextLb = addLabel(this, "m_failTextLb", {122, 319, 256, 19}, Styles::label(Styles::kFailure),
                            tr(Texts::kFailed));
    m_failTextLb->setAlignment(Qt::AlignCenter);
    hideAll({m_failIconLb, m_failTextLb});
}

void FirmwareUpgradeWidget::createOfflineToolLine()
{
    m_offlineToolTipLb = addLabel(this, "m_offlineToolTipLb", {}, Styles::label(Styles::kOfflineTool),
                                  tr(Texts::kUseOfflineTool));
    m_offlineToolIconLb = addPicture(this, "m_offlineToolIconLb", "exclamation_mark.png", {0, 0, 24, 24});
    m_offlineToolIconLb->setFixedSize(24, 24);
    m_offlineToolLinkLb = addLabel(this, "m_offlineToolLinkLb", {},
                                   Styles::offlineToolLink(Styles::kChineseFamily), offlineToolLink(false));
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
