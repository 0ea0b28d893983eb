// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/support/LogHook.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QEvent>
#include <QLabel>
#include <QScopeGuard>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;
using QuillonFirmwareUpgrade::setLanguage;

namespace {

using Label = QLabel *(OpenPanel::*)() const;

/// A label in one language; an empty text or style is not looked at.
struct Translated {
    Label label;
    QRect place;
    QString text;
    QString style;
};

struct LabelRow {
    const char *name;
    Translated chinese;
    Translated english;
};

QString labelStyle(const char *properties, const char *family)
{
    return QString::fromUtf8(properties).arg(QLatin1String(family));
}

LabelRow row(const char *name, Label label, const QRect &chinese, const QRect &english,
             const char *chineseText = "", const char *englishText = "", const char *style = nullptr)
{
    return {
        name,
        {label, chinese, QString::fromUtf8(chineseText),
         style ? labelStyle(style, "Microsoft YaHei") : QString()},
        {label, english, QString::fromUtf8(englishText), style ? labelStyle(style, "Segoe UI") : QString()}};
}

constexpr char kNewVersion[]
    = "QLabel{border:0px; color:rgba(47,212,179,1); font-family:\"%1\"; font-size:20px; font-weight:700;}";
constexpr char kCurrentVersion[]
    = "QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"%1\"; font-size:14px; "
      "font-weight:400; letter-spacing:0px; text-align:left;}";
constexpr char kTooOld[]
    = "QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"%1\"; font-size:16px; font-weight:700;}";
constexpr char kOfflineTip[]
    = "QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"%1\"; font-size:14px; font-weight:700;}";
constexpr char kOfflineLink[] = "QLabel{border:0px; font-family:\"%1\"; font-size:14px;}";
constexpr char kNotes[]
    = "QTextEdit {  border: none;  background: transparent;  color: rgba(255, 255, 255, 0.7);  font-family: "
      "'%1';  font-size: 14px;  font-weight: 400;  letter-spacing: 0px;}QScrollBar:vertical {  background: "
      "transparent;  width: 5px;  margin: 0px;  border: none;}QScrollBar::handle:vertical {  background: "
      "rgba(255,255,255,0.15);  width: 5px;  min-height: 60px;  max-height: 60px;  border-radius: 2.4px;  "
      "border: none;}QScrollBar::handle:vertical:hover {  background: "
      "rgba(255,255,255,0.5);}QScrollBar::handle:vertical:pressed {  background: "
      "rgba(255,255,255,0.7);}QScrollBar::add-line:vertical {  height: 0px;  border: "
      "none;}QScrollBar::sub-line:vertical {  height: 0px;  border: none;}QScrollBar::add-page:vertical, "
      "QScrollBar::sub-page:vertical {  background: transparent;  border: none;}";

const char kChineseLink[]
    = "<a style='color:rgba(87,110,246,1); text-decoration:none; font-weight:700;' "
      "href='" QUILLON_DOWNLOAD_HOST "/limit/R1_R2%20Firmware%20Upgrade%20Tool.exe'>前往官网下载>></a>";
const char kEnglishLink[]
    = "<a style='color:rgba(87,110,246,1); text-decoration:none; font-weight:700;' "
      "href='" QUILLON_DOWNLOAD_HOST "/limit/R1_R2%20Firmware%20Upgrade%20Tool.exe'>Download>></a>";

const QList<LabelRow> &labelRows()
{
    static const QList<LabelRow> rows{
        row("m_titleLabel", &OpenPanel::title, {24, 16, 130, 19}, {24, 16, 130, 19}, "固件升级",
            "Firmware Update"),
        row("m_newVerTitleLb", &OpenPanel::newVersionTitle, {24, 16, 42, 19}, {24, 16, 90, 19}, "新版本",
            "New Version"),
        row("m_curVerTitleLb", &OpenPanel::currentVersionTitle, {207, 16, 56, 19}, {207, 16, 110, 19},
            "当前版本", "Current Version"),
        row("m_newVerLb", &OpenPanel::newVersion, {39, 38, 80, 26}, {39, 38, 80, 26}, "", "", kNewVersion),
        row("m_curVerLb", &OpenPanel::currentVersion, {208, 42, 55, 19}, {208, 42, 55, 19}, "", "",
            kCurrentVersion),
        row("m_notesTitleLb", &OpenPanel::notesTitle, {60, 159, 64, 21}, {60, 159, 100, 21}, "新版概述",
            "What's New"),
        row("m_noNewFirmwareLb", &OpenPanel::noNewFirmware, {24, 29, 150, 21}, {24, 19, 150, 42},
            "无新版固件", "Firmware is up to \ndate"),
        row("m_rocketLb", &OpenPanel::rocket, {158, 14, 20, 20}, {142, 14, 20, 20}),
        row("m_upgradeTextLb", &OpenPanel::upgradeText, {172, 13, 64, 21}, {156, 13, 105, 21}, "立即升级",
            "Update Now"),
        row("m_tooOldLb", &OpenPanel::tooOldText, {0, 0, 408, 48}, {0, 0, 408, 48}, "固件版本过低，无法升级",
            "Firmware version is too low to update.", kTooOld),
        row("m_doneIconLb", &OpenPanel::doneIcon, {156, 12, 24, 24}, {117, 12, 24, 24}),
        row("m_doneLb", &OpenPanel::doneText, {188, 13, 64, 21}, {149, 13, 142, 21}, "升级完成",
            "Update Completed"),
        row("m_failIconLb", &OpenPanel::failureIcon, {95, 317, 24, 24}, {32, 317, 24, 24}),
        row("m_failTextLb", &OpenPanel::failureText, {122, 319, 256, 19}, {58, 319, 364, 19},
            "升级失败！请拔插设备后重新开始升级", "Update failed. Please replug the device and try again."),
        row("m_offlineToolTipLb", &OpenPanel::offlineToolTip, {}, {}, "需使用离线升级工具进行更新，",
            "Update requires offline tool ,", kOfflineTip),
        row("m_offlineToolLinkLb", &OpenPanel::offlineToolLink, {}, {}, kChineseLink, kEnglishLink,
            kOfflineLink),
        row("m_detectingUsbLb", &OpenPanel::detectingText, {122, 203, 229, 21}, {122, 203, 229, 21},
            "正在检测USB接入...", "Detecting USB connection..."),
        row("m_waitingIconLb", &OpenPanel::waitingIcon, {108, 12, 24, 24}, {51, 12, 24, 24}),
        row("m_upgradingLb", &OpenPanel::waitingText, {140, 13, 159, 21}, {83, 13, 290, 21},
            "待USB线接入图示口...", "Connect to the indicated USB ports. "),
    };
    return rows;
}

void compareLabel(const OpenPanel &panel, const Translated &expected)
{
    const QLabel *label = (panel.*expected.label)();
    if (!expected.place.isNull())
        QCOMPARE(label->geometry(), expected.place);
    if (!expected.text.isEmpty())
        QCOMPARE(label->text(), expected.text);
    if (!expected.style.isEmpty())
        QCOMPARE(label->styleSheet(), expected.style);
}

} // namespace

Q_DECLARE_METATYPE(LabelRow)

namespace {
/// How often a widget has read a style sheet.
class StyleCount : public QObject {
public:
    explicit StyleCount(const QList<QLabel *> &labels)
    {
        for (QLabel *label : labels) {
            label->ensurePolished();
            label->installEventFilter(this);
        }
    }
    int times = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        times += event->type() == QEvent::StyleChange;
        return QObject::eventFilter(watched, event);
    }
};
} // namespace

class RetranslationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void label_data();
    void label();
    void sizesTheOfflineToolLineToItsTexts();
    void centresTheOfflineToolLineWhenItShows_data();
    void centresTheOfflineToolLineWhenItShows();
    void leavesAHiddenOfflineToolLineWhereItIs();
    void stylesTheNotes();
    void readsAStyleSheetOnlyWhenItChanges();
    void logsBetweenItsSteps();
};

void RetranslationTest::label_data()
{
    QTest::addColumn<LabelRow>("row");
    for (const LabelRow &row : labelRows())
        QTest::newRow(row.name) << row;
}

void RetranslationTest::label()
{
    QFETCH(LabelRow, row);
    const PanelStage stage;
    compareLabel(*stage.panel, row.chinese);
    setLanguage(Language::English);
    compareLabel(*stage.panel, row.english);
    setLanguage(Language::Chinese);
    compareLabel(*stage.panel, row.chinese);
}

void RetranslationTest::sizesTheOfflineToolLineToItsTexts()
{
    const PanelStage stage;
    for (const Language language : {Language::English, Language::Chinese}) {
        setLanguage(language);
        QCOMPARE(stage.panel->offlineToolTip()->size(), stage.panel->offlineToolTip()->sizeHint());
        QCOMPARE(stage.panel->offlineToolLink()->size(), stage.panel->offlineToolLink()->sizeHint());
    }
}

void RetranslationTest::centresTheOfflineToolLineWhenItShows_data()
{
    QTest::addColumn<Language>("language");
    QTest::newRow("English") << Language::English;
    QTest::newRow("Chinese") << Language::Chinese;
}

void RetranslationTest::centresTheOfflineToolLineWhenItShows()
{
    QFETCH(Language, language);
    const PanelStage stage;
    const QLabel *icon = stage.panel->offlineToolIcon();
    QLabel *tip = stage.panel->offlineToolTip();
    const QLabel *link = stage.panel->offlineToolLink();
    stage.panel->show();
    tip->show();
    setLanguage(language);
    const int start = (380 - link->width() - tip->width()) / 2 + 32;
    QCOMPARE(tip->pos(), QPoint(start + 28, 319));
    QCOMPARE(link->pos(), QPoint(start + 28 + tip->width(), 319));
    QCOMPARE(icon->pos(), QPoint(start, (tip->height() - 24) / 2 + 319));
}

void RetranslationTest::leavesAHiddenOfflineToolLineWhereItIs()
{
    const PanelStage stage;
    stage.panel->show();
    stage.panel->offlineToolTip()->move(1, 2);
    stage.panel->offlineToolLink()->move(3, 4);
    stage.panel->offlineToolIcon()->move(5, 6);
    setLanguage(Language::English);
    QCOMPARE(stage.panel->offlineToolTip()->pos(), QPoint(1, 2));
    QCOMPARE(stage.panel->offlineToolLink()->pos(), QPoint(3, 4));
    QCOMPARE(stage.panel->offlineToolIcon()->pos(), QPoint(5, 6));
}

void RetranslationTest::stylesTheNotes()
{
    const PanelStage stage;
    QCOMPARE(stage.panel->notes()->styleSheet(), labelStyle(kNotes, "Microsoft YaHei"));
    setLanguage(Language::English);
    QCOMPARE(stage.panel->notes()->styleSheet(), labelStyle(kNotes, "Segoe UI"));
    setLanguage(Language::Chinese);
    QCOMPARE(stage.panel->notes()->styleSheet(), labelStyle(kNotes, "Microsoft YaHei"));
}

void RetranslationTest::readsAStyleSheetOnlyWhenItChanges()
{
    const PanelStage stage;
    const auto chineseAgain = qScopeGuard([] { setLanguage(Language::Chinese); });
    OpenPanel &panel = *stage.panel;
    StyleCount count({panel.tooOldText(), panel.newVersion(), panel.currentVersion()});
    panel.retranslate();
    QCOMPARE(count.times, 0);
    setLanguage(Language::English);
    QVERIFY(count.times > 0);
    QVERIFY(panel.tooOldText()->styleSheet().contains(u"Segoe UI"_s));
}

void RetranslationTest::logsBetweenItsSteps()
{
    const PanelStage stage;
    const OpenPanel &panel = *stage.panel;
    QStringList atTheLanguageLine;
    QStringList atThePlanLine;
    {
        const LogHook hook(u"Detected language switch."_s, [&](const QString &) {
            if (atTheLanguageLine.isEmpty())
                atTheLanguageLine = {panel.isChinese() ? u"Chinese"_s : u"English"_s, panel.title()->text()};
        });
        setLanguage(Language::English);
    }
    {
        const LogHook hook(u" ####retranslateUI"_s, [&](const QString &) {
            if (atThePlanLine.isEmpty())
                atThePlanLine
                    = {panel.title()->text(), panel.tooOldText()->text(), panel.offlineToolTip()->text(),
                       panel.newVersionTitle()->text(), panel.doneText()->text()};
        });
        setLanguage(Language::Chinese);
    }
    QCOMPARE(atTheLanguageLine, (QStringList{u"English"_s, u"固件升级"_s}));
    QCOMPARE(atThePlanLine,
             (QStringList{u"固件升级"_s, u"固件版本过低，无法升级"_s, u"需使用离线升级工具进行更新，"_s,
                          u"New Version"_s, u"Update Completed"_s}));
}

QUILLON_TEST(RetranslationTest)
#include "tst_retranslation.moc"
