// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The panel's language: the choice that all panels of the process share, and the re-translation of one panel,
// which also moves what is longer in another language. Sets isChinese and m_otherLanguage. Called by the
// host, and by Qt when the language has changed.

#include "device/ModelTable.h"
#include "net/networking_class.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/ForeignText.h"
#include "panel/LanguageTable.h"
#include "panel/Places.h"
#include "panel/Styles.h"
#include "panel/Texts.h"
#include "system/Log.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QTextEdit>
#include <QTimer>
#include <QTranslator>

namespace QuillonFirmwareUpgrade {

namespace {
Language currentLanguage = Language::Chinese;
QTranslator *installedTranslator = nullptr; // null while the source language is shown

void removeTranslator()
{
    if (!installedTranslator)
        return;
    QCoreApplication::removeTranslator(installedTranslator);
    delete installedTranslator;
    installedTranslator = nullptr;
}

void installTranslator(const LanguageRow &language)
{
    auto *translator = new QTranslator;
    if (!translator->load(language.catalogue)) {
        Log::panelWarning() << "QuillonCustomLibrary: Failed to load" << language.name << "translation";
        delete translator;
        return;
    }
    installedTranslator = translator;
    QCoreApplication::installTranslator(translator);
    Log::panel() << "QuillonCustomLibrary:" << language.name << "translation loaded";
}

void announceLanguageChange()
{
    QList<QPointer<QWidget>> widgets;
    for (QWidget *widget : QApplication::allWidgets())
        widgets.append(widget);
    // A widget may react by deleting others.
    for (const QPointer<QWidget> &widget : std::as_const(widgets)) {
        QEvent change(QEvent::LanguageChange);
        if (widget)
            QCoreApplication::sendEvent(widget, &change);
    }
}
} // namespace

void setLanguage(Language lang)
{
    const LanguageRow &language = rowOf(lang);
    removeTranslator();
    currentLanguage = lang;
    QApplication::setFont(QFont(language.family));
    if (language.catalogue.isEmpty())
        Log::panel() << "QuillonCustomLibrary: Using" << language.name << "(source language)";
    else
        installTranslator(language);
    announceLanguageChange();
}

Language getCurrentLanguage()
{
    return currentLanguage;
}

void FirmwareUpgradeWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUI();
    QWidget::changeEvent(event);
}

void FirmwareUpgradeWidget::retranslateUI()
{
    isChinese = currentLanguage == Language::Chinese;
    if (!isChinese)
        m_otherLanguage = currentLanguage;
    Log::panel() << "Detected language switch. The language after switching is: " << shownLanguage().name;
    m_titleLabel->setText(tr(Texts::kTitle));
    m_tooOldLb->setText(tr(Texts::kTooOld));
    Styles::give(*m_tooOldLb, Styles::label(Styles::kTooOld, fontFamily()));
    retranslateOfflineTool();
    Log::panel() << " ####retranslateUI isNeedUpgrade is: " << isUpgradePlanned();
    retranslateLabels();
    retranslateNotes();
    const Port port = isOtgPhase() ? Port::Otg : Port::Pc;
    m_detectingUsbLb->setText(detectingText(port));
    m_connectHintLb->setText(connectionHint(port));
    retranslateUpgradeText();
    m_doneLb->setText(tr(Texts::kDone));
    m_failTextLb->setText(tr(Texts::kFailed));
    updateWaitingLabelLayout();
    nameForScreenReaders();
    // At a change of the language Qt gives its own words to a button like this, before or after the panel's
    // turn.
    if (m_warningBox)
        QTimer::singleShot(0, m_warningBox, [this] { nameWarningButton(); });
}

void FirmwareUpgradeWidget::retranslateOfflineTool()
{
    m_offlineToolTipLb->setText(tr(Texts::kUseOfflineTool));
    Styles::give(*m_offlineToolTipLb, Styles::label(Styles::kOfflineTool, fontFamily()));
    m_offlineToolTipLb->adjustSize();
    m_offlineToolLinkLb->setText(offlineToolLink(false));
    Styles::give(*m_offlineToolLinkLb, Styles::offlineToolLink(fontFamily()));
    m_offlineToolLinkLb->adjustSize();
    // A panel that its user has closed for the moment shows the line again when it comes back.
    if (!m_offlineToolTipLb->isHidden())
        placeOfflineToolLine();
}

void FirmwareUpgradeWidget::retranslateLabels()
{
    struct MovingLabel {
        QLabel *FirmwareUpgradeWidget::*label;
        const char *text; // null: the text is not this function's
        Place place;
    };
    using Panel = FirmwareUpgradeWidget;
    static constexpr MovingLabel labels[] = {
        {&Panel::m_newVerTitleLb, Texts::kNewVersion, Places::kNewVersionTitle},
        {&Panel::m_curVerTitleLb, Texts::kCurrentVersion, Places::kCurrentVersionTitle},
        {&Panel::m_notesTitleLb, Texts::kNotesTitle, Places::kNotesTitle},
        {&Panel::m_noNewFirmwareLb, Texts::kUpToDate, Places::kUpToDate},
        {&Panel::m_rocketLb, nullptr, Places::kRocket},
        {&Panel::m_doneIconLb, nullptr, Places::kDoneIcon},
        {&Panel::m_doneLb, nullptr, Places::kDone},
        {&Panel::m_failIconLb, nullptr, Places::kFailureIcon},
        {&Panel::m_failTextLb, nullptr, Places::kFailureText},
    };
    for (const MovingLabel &row : labels) {
        QLabel *label = this->*row.label;
        if (row.text)
            label->setText(tr(row.text));
        label->setGeometry(row.place.in(shownLanguage()));
    }
    Styles::give(*m_newVerLb, Styles::label(Styles::kNewVersion, fontFamily()));
    Styles::give(*m_curVerLb, Styles::label(Styles::kCurrentVersion, fontFamily()));
}

/// Shows the notes that the last successful query left, in the language that is shown now.
void FirmwareUpgradeWidget::retranslateNotes()
{
    const QString notes = currentReleaseNotes();
    if (!notes.isEmpty())
        m_notesEdit->setPlainText(isUpgradePlanned() ? notes : QStringLiteral("--"));
    Styles::give(*m_notesEdit, Styles::notes(fontFamily()));
}

void FirmwareUpgradeWidget::retranslateUpgradeText()
{
    if (isRetryScreen()) {
        m_upgradeTextLb->setGeometry(Places::kRetry.in(shownLanguage()));
        m_upgradeTextLb->setText(tr(Texts::kRetry));
        Styles::give(*m_upgradeTextLb, Styles::retryText(fontFamily()));
        return;
    }
    const Place &place = isUpgradePlanned() ? Places::kUpgradeBesideRocket : Places::kUpgradeAlone;
    m_upgradeTextLb->setGeometry(place.in(shownLanguage()));
    m_upgradeTextLb->setText(tr(Texts::kUpgradeNow));
}

const LanguageRow &FirmwareUpgradeWidget::shownLanguage() const
{
    return rowOf(isChinese ? Language::Chinese : m_otherLanguage);
}

QString FirmwareUpgradeWidget::fontFamily() const
{
    return shownLanguage().family;
}

QString FirmwareUpgradeWidget::currentReleaseNotes() const
{
    return ForeignText::shownNotes(networking_class::getInstance()->*shownLanguage().notes);
}

QString FirmwareUpgradeWidget::detectingText(Port port) const
{
    return tr(port == Port::Otg ? Texts::kDetectingOtg : Texts::kDetectingUsb);
}

QString FirmwareUpgradeWidget::connectionHint(Port port) const
{
    const ModelRow &model = rowOf(m_deviceModel);
    return tr(port == Port::Otg ? model.otg.hint : model.pc.hint);
}

} // namespace QuillonFirmwareUpgrade
