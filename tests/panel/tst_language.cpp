// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/support/LogHook.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;
using QuillonFirmwareUpgrade::getCurrentLanguage;
using QuillonFirmwareUpgrade::setLanguage;

namespace {

const QString kChineseLine = QStringLiteral("QuillonCustomLibrary: Using Chinese (source language)");
const QString kEnglishLine = QStringLiteral("QuillonCustomLibrary: English translation loaded");

QString translatedByTheApplication()
{
    return QCoreApplication::translate("QuillonFirmwareUpgrade::FirmwareUpgradeWidget", "升级完成");
}

/// Writes down which windows are told that the language changed, in order.
class LanguageEvents : public QObject {
public:
    LanguageEvents() { qApp->installEventFilter(this); }

    QList<const QWidget *> windows;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange && watched->isWidgetType()) {
            const auto *widget = static_cast<const QWidget *>(watched);
            if (widget->isWindow())
                windows.append(widget);
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

class LanguageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isChineseBeforeAnybodyAsks();
    void remembersAndLogs_data();
    void remembersAndLogs();
    void leavesOneTranslatorAtMost();
    void changesTheFontOfTheApplication_data();
    void changesTheFontOfTheApplication();
    void logsAfterTheFontAndBeforeThePanels_data();
    void logsAfterTheFontAndBeforeThePanels();
    void tellsEveryWindowInTheApplicationsOrder();
    void changesEveryPanelBeforeItReturns();
    void reloadsTheLanguageThatIsActive();
    void retranslatesOnLanguageChangeOnly_data();
    void retranslatesOnLanguageChangeOnly();
    void aNewPanelFollowsTheActiveLanguage();
    void saysWhichLanguageThePanelSwitchedTo_data();
    void saysWhichLanguageThePanelSwitchedTo();
    void keepsChineseTextsWithoutACatalogue();
};

void LanguageTest::isChineseBeforeAnybodyAsks()
{
    QCOMPARE(getCurrentLanguage(), Language::Chinese);
    QCOMPARE(translatedByTheApplication(), u"升级完成"_s);
}

void LanguageTest::remembersAndLogs_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("text");
    QTest::newRow("Chinese") << Language::Chinese << kChineseLine << u"升级完成"_s;
    QTest::newRow("English") << Language::English << kEnglishLine << u"Update Completed"_s;
    QTest::newRow("any other value is English") << Language(2) << kEnglishLine << u"Update Completed"_s;
    QTest::newRow("a negative value is English") << Language(-1) << kEnglishLine << u"Update Completed"_s;
}

void LanguageTest::remembersAndLogs()
{
    QFETCH(Language, language);
    QFETCH(QString, line);
    QFETCH(QString, text);
    const PanelStage stage;
    setLanguage(language);
    QCOMPARE(getCurrentLanguage(), language);
    QCOMPARE(stage.log.startingWith(u"QuillonCustomLibrary"_s), QStringList{line});
    QCOMPARE(translatedByTheApplication(), text);
    QCOMPARE(stage.panel->doneText()->text(), text);
    QCOMPARE(stage.panel->isChinese(), language == Language::Chinese);
}

void LanguageTest::leavesOneTranslatorAtMost()
{
    for (int i = 0; i < 5; ++i)
        setLanguage(Language::English);
    setLanguage(Language::Chinese);
    QCOMPARE(translatedByTheApplication(), u"升级完成"_s);
}

void LanguageTest::changesTheFontOfTheApplication_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("family");
    QTest::newRow("Chinese") << Language::Chinese << u"Microsoft YaHei"_s;
    QTest::newRow("English") << Language::English << u"Segoe UI"_s;
    QTest::newRow("any other value") << Language(7) << u"Segoe UI"_s;
}

void LanguageTest::changesTheFontOfTheApplication()
{
    QFETCH(Language, language);
    QFETCH(QString, family);
    const PanelStage stage;
    QApplication::setFont(QFont(u"Sans"_s, 31, QFont::Black, true));
    setLanguage(language);
    const QFont expected(family);
    QCOMPARE(QApplication::font().family(), family);
    QCOMPARE(QApplication::font().pointSize(), expected.pointSize());
    QCOMPARE(QApplication::font().weight(), expected.weight());
    QVERIFY(!QApplication::font().italic());
}

void LanguageTest::logsAfterTheFontAndBeforeThePanels_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("formerText");
    QTest::addColumn<QString>("translation");
    QTest::newRow("to Chinese") << Language::Chinese << kChineseLine << u"Microsoft YaHei"_s
                                << u"Update Completed"_s << u"升级完成"_s;
    QTest::newRow("to English") << Language::English << kEnglishLine << u"Segoe UI"_s << u"升级完成"_s
                                << u"Update Completed"_s;
}

void LanguageTest::logsAfterTheFontAndBeforeThePanels()
{
    QFETCH(Language, language);
    QFETCH(QString, line);
    QFETCH(QString, family);
    QFETCH(QString, formerText);
    QFETCH(QString, translation);
    const PanelStage stage;
    setLanguage(language == Language::Chinese ? Language::English : Language::Chinese);
    std::optional<Language> stored;
    QString font;
    QString text;
    QString translated;
    {
        const LogHook hook(line, [&](const QString &) {
            stored = getCurrentLanguage();
            font = QApplication::font().family();
            text = stage.panel->doneText()->text();
            translated = translatedByTheApplication();
        });
        setLanguage(language);
    }
    QVERIFY(stored == language);
    QCOMPARE(font, family);
    QCOMPARE(text, formerText);
    QCOMPARE(translated, translation);
}

void LanguageTest::tellsEveryWindowInTheApplicationsOrder()
{
    const PanelStage stage;
    const OpenPanel secondPanel;
    const QWidget hostWindow;
    const QWidget hostDialog;
    QList<const QWidget *> expected;
    const auto widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        if (widget->isWindow())
            expected.append(widget);
    }
    QVERIFY(expected.size() >= 4);
    const LanguageEvents events;
    setLanguage(Language::English);
    QCOMPARE(events.windows, expected);
}

void LanguageTest::changesEveryPanelBeforeItReturns()
{
    const PanelStage stage;
    QWidget host;
    const OpenPanel embedded(&host);
    setLanguage(Language::English);
    QCOMPARE(stage.panel->title()->text(), u"Firmware Update"_s);
    QCOMPARE(embedded.title()->text(), u"Firmware Update"_s);
    setLanguage(Language::Chinese);
    QCOMPARE(stage.panel->title()->text(), u"固件升级"_s);
    QCOMPARE(embedded.title()->text(), u"固件升级"_s);
}

void LanguageTest::reloadsTheLanguageThatIsActive()
{
    PanelStage stage;
    setLanguage(Language::English);
    stage.panel->title()->setText(u"changed by somebody else"_s);
    stage.log.clear();
    setLanguage(Language::English);
    QCOMPARE(stage.log.count(kEnglishLine), 1);
    QCOMPARE(stage.panel->title()->text(), u"Firmware Update"_s);
}

void LanguageTest::retranslatesOnLanguageChangeOnly_data()
{
    QTest::addColumn<QEvent::Type>("type");
    QTest::addColumn<int>("times");
    QTest::newRow("the language") << QEvent::LanguageChange << 1;
    QTest::newRow("the font") << QEvent::FontChange << 0;
    QTest::newRow("the style") << QEvent::StyleChange << 0;
    QTest::newRow("the locale") << QEvent::LocaleChange << 0;
    QTest::newRow("the window's title") << QEvent::WindowTitleChange << 0;
}

void LanguageTest::retranslatesOnLanguageChangeOnly()
{
    QFETCH(QEvent::Type, type);
    QFETCH(int, times);
    PanelStage stage;
    stage.log.clear();
    QEvent event(type);
    stage.panel->changeEvent(&event);
    QCOMPARE(stage.log.startingWith(u"Detected language switch."_s).size(), times);
}

void LanguageTest::aNewPanelFollowsTheActiveLanguage()
{
    const PanelStage stage;
    setLanguage(Language::English);
    const OpenPanel panel;
    QCOMPARE(panel.isChinese(), false);
    QCOMPARE(panel.windowTitle(), u"Firmware Update"_s);
    QCOMPARE(panel.title()->text(), u"Firmware Update"_s);
    QCOMPARE(panel.currentVersionTitle()->geometry(), QRect(207, 16, 110, 19));
    QVERIFY(panel.currentVersion()->styleSheet().contains(u"\"Segoe UI\""_s));
}

void LanguageTest::saysWhichLanguageThePanelSwitchedTo_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("name");
    QTest::newRow("Chinese") << Language::Chinese << u"Chinese"_s;
    QTest::newRow("English") << Language::English << u"English"_s;
    QTest::newRow("any other value") << Language(2) << u"English"_s;
}

void LanguageTest::saysWhichLanguageThePanelSwitchedTo()
{
    QFETCH(Language, language);
    QFETCH(QString, name);
    PanelStage stage;
    stage.log.clear();
    setLanguage(language);
    const QStringList lines = stage.log.startingWith(u"Detected language switch."_s);
    QVERIFY(!lines.isEmpty());
    for (const QString &line : lines)
        QCOMPARE(line, u"Detected language switch. The language after switching is:  "_s + name);
}

void LanguageTest::keepsChineseTextsWithoutACatalogue()
{
    Q_CLEANUP_RESOURCE(quillon_translations);
    {
        const PanelStage stage;
        QTest::ignoreMessage(QtWarningMsg, "QuillonCustomLibrary: Failed to load English translation");
        setLanguage(Language::English);
        QVERIFY(!stage.log.contains(kEnglishLine));
        QCOMPARE(getCurrentLanguage(), Language::English);
        QCOMPARE(QApplication::font().family(), u"Segoe UI"_s);
        QCOMPARE(stage.panel->isChinese(), false);
        QCOMPARE(stage.panel->doneText()->text(), u"升级完成"_s);
        QCOMPARE(stage.panel->doneText()->geometry(), QRect(149, 13, 142, 21));
    }
    Q_INIT_RESOURCE(quillon_translations);
    setLanguage(Language::English);
    QCOMPARE(translatedByTheApplication(), u"Update Completed"_s);
    setLanguage(Language::Chinese);
}

QUILLON_TEST(LanguageTest)
#include "tst_language.moc"
