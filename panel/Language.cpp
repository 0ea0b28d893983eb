// The panel's language: the choice that all panels of the process share, and the re-translation of one panel,
// which also moves what is longer in English. Sets isChinese. Called by the host, and by Qt when the language
// has changed.

#include "device/ModelTable.h"
#include "net/networking_class.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "panel/Log.h"
#include "panel/Styles.h"
#include "panel/Texts.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QLabel>
#include <QPointer>
#include <QTextEdit>
#include <QTranslator>

namespace QuillonFirmwareUpgrade {

namespace {
Language currentLanguage = Language::Chinese;
QTranslator *installedTranslator = nullptr; // null while the source language is shown

const QString &familyOf(bool chinese)
{
    return chinese ? Styles::kChineseFamily : Styles::kEnglishFamily;
}

void removeTranslator()
{
    if (!installedTranslator)
        return;
    QCoreApplication::removeTranslator(installedTranslator);
    delete installedTranslator;
    installedTranslator = nullptr;
}

void installEnglishTranslator()
{
    auto *translator = new QTranslator;
    if (!translator->load(QStringLiteral(":/QUILLON/Translate/QuillonFirmwareUpgrade_en.qm"))) {
        qWarning().noquote() << "QuillonCustomLibrary: Failed to load English translation";
        delete translator;
        return;
    }
    installedTranslator = translator;
    QCoreApplication::installTranslator(translator);
    logLine() << "QuillonCustomLibrary: English translation loaded";
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
    const bool chinese = lang == Language::Chinese;
    removeTranslator();
    currentLanguage = lang;
    QApplication::setFont(QFont(familyOf(chinese)));
    if (chinese)
        logLine() << "QuillonCustomLibrary: Using Chinese (source language)";
    else
        installEnglishTranslator();
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
    logLine() << "Detected language switch. The language after switching is: "
              << (isChinese ? "Chinese" : "English");
    m_titleLabel->setText(tr(Texts::kTitle));
    m_tooOldLb->setText(tr(Texts::kTooOld));
    m_tooOldLb->setStyleSheet(Styles::label(Styles::kTooOld, fontFamily()));
    retranslateOfflineTool();
    logLine() << " ####retranslateUI isNeedUpgrade is: " << isUpgradePlanned();
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
}

void FirmwareUpgradeWidget::retranslateOfflineTool()
{
    m_offlineToolTipLb->setText(tr(Texts::kUseOfflineTool));
    m_offlineToolTipLb->setStyleSheet(Styles::label(Styles::kOfflineTool, fontFamily()));
    m_offlineToolTipLb->adjustSize();
    m_offlineToolLinkLb->setText(offlineToolLink(false));
    m_offlineToolLinkLb->setStyleSheet(Styles::offlineToolLink(fontFamily()));
    m_offlineToolLinkLb->adjustSize();
    // A panel that its user has closed for the moment shows the line again when it comes back.
    if (!m_offlineToolTipLb->isHidden())
        placeOfflineToolLine();
}

void FirmwareUpgradeWidget::retranslateLabels()
{
    struct LabelPlace {
        QLabel *FirmwareUpgradeWidget::*label;
        const char *text; // null: the text is not this function's
        QRect chinese;
        QRect english;
    };
    using Panel = FirmwareUpgradeWidget;
    static const LabelPlace places[] = {
        {&Panel::m_newVerTitleLb, Texts::kNewVersion, {24, 16, 42, 19}, {24, 16, 90, 19}},
        {&Panel::m_curVerTitleLb, Texts::kCurrentVersion, {207, 16, 56, 19}, {207, 16, 110, 19}},
        {&Panel::m_notesTitleLb, Texts::kNotesTitle, {60, 159, 64, 21}, {60, 159, 100, 21}},
        {&Panel::m_noNewFirmwareLb, Texts::kUpToDate, {24, 29, 150, 21}, {24, 19, 150, 42}},
        {&Panel::m_rocketLb, nullptr, {158, 14, 20, 20}, {142, 14, 20, 20}},
        {&Panel::m_doneIconLb, nullptr, {156, 12, 24, 24}, {117, 12, 24, 24}},
        {&Panel::m_doneLb, nullptr, {188, 13, 64, 21}, {149, 13, 142, 21}},
        {&Panel::m_failIconLb, nullptr, {95, 317, 24, 24}, {32, 317, 24, 24}},
        {&Panel::m_failTextLb, nullptr, {122, 319, 256, 19}, {58, 319, 364, 19}},
    };
    for (const LabelPlace &place : places) {
        QLabel *label = this->*place.label;
        if (place.text)
            label->setText(tr(place.text));
        label->setGeometry(isChinese ? place.chinese : place.english);
    }
    m_newVerLb->setStyleSheet(Styles::label(Styles::kNewVersion, fontFamily()));
    m_curVerLb->setStyleSheet(Styles::label(Styles::kCurrentVersion, fontFamily()));
}

/// Shows the notes that the last successful query left, in the language that is shown now.
void FirmwareUpgradeWidget::retranslateNotes()
{
    const QString notes = currentReleaseNotes();
    if (!notes.isEmpty())
        m_notesEdit->setPlainText(isUpgradePlanned() ? notes : QStringLiteral("--"));
    m_notesEdit->setStyleSheet(Styles::notes(fontFamily()));
}

void FirmwareUpgradeWidget::retranslateUpgradeText()
{
    if (isRetryScreen()) {
        m_upgradeTextLb->setGeometry(upgradeTextPlace(UpgradeText::Retry));
        m_upgradeTextLb->setText(tr(Texts::kRetry));
        m_upgradeTextLb->setStyleSheet(Styles::retryText(fontFamily()));
        return;
    }
    m_upgradeTextLb->setGeometry(
        upgradeTextPlace(isUpgradePlanned() ? UpgradeText::BesideRocket : UpgradeText::Alone));
    m_upgradeTextLb->setText(tr(Texts::kUpgradeNow));
}

QString FirmwareUpgradeWidget::fontFamily() const
{
    return familyOf(isChinese);
}

QString FirmwareUpgradeWidget::currentReleaseNotes() const
{
    const networking_class *server = networking_class::getInstance();
    return isChinese ? server->f_remark : server->f_remark_en;
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
