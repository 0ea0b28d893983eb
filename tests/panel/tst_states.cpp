// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QLabel>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

constexpr char kWhite[]
    = "QLabel{border:0px; color:rgba(255,255,255,1); font-family:\"Microsoft YaHei\"; font-size:16px; "
      "font-weight:700; letter-spacing:0px; text-align:center;}";
constexpr char kDimmed[] = "QLabel{border:0px; color:rgba(255,255,255,0.5); font-family:\"Microsoft YaHei\"; "
                           "font-size:16px; font-weight:700; letter-spacing:0px; text-align:center;}";

enum class Shown { UpToDate, Available, TooOld, Nothing };

/// Tells the resting screens apart by the colour of the bar, which each of them sets first.
Shown shownScreen(const OpenPanel &panel)
{
    const QColor colour = panel.barBackground();
    if (colour == QColor(48, 49, 60, 255))
        return Shown::UpToDate;
    if (colour == QColor(87, 110, 246, 255))
        return Shown::Available;
    return colour == QColor(248, 74, 75, 255) ? Shown::TooOld : Shown::Nothing;
}

/// A panel whose widgets are all in the state that the next screen has to change: what the screen shows is
/// hidden.
struct Prepared : PanelStage {
    Prepared(UpgradePlan plan, const QString &pcVersion, const QStringList &visible)
    {
        server.answer(ServerPaths::kR2PcVersion,
                      ScriptedHttpServer::version("2.0.0", "中文说明", "English notes"));
        panel->show();
        panel->pretendPlan(plan);
        panel->pretendDeviceVersion(Chip::Pc, pcVersion);
        panel->pretendServerVersion(Chip::Pc, u"2.0.0"_s);
        panel->bar()->setBackgroundColor(Qt::black);
        Screen::showOnly(*panel, visible);
    }
};

QStringList hidden(const QStringList &names)
{
    QStringList changes;
    for (const QString &name : names)
        changes.append(u'-' + name);
    return changes;
}

QStringList shown(const QStringList &names)
{
    QStringList changes;
    for (const QString &name : names)
        changes.append(u'+' + name);
    return changes;
}

bool isOnTopOfTheBar(const OpenPanel &panel, const QLabel *label)
{
    return panel.bar()->children().last() == label;
}

} // namespace

Q_DECLARE_METATYPE(Shown)

class StatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFailureScreenStays_data();
    void theFailureScreenStays();
    void showsTheVersions_data();
    void showsTheVersions();
    void anUnknownPlanChangesTheVersionsOnly();
    void choosesTheScreen_data();
    void choosesTheScreen();
    void upToDate();
    void upToDateChangesInOrder();
    void upToDateLeavesTheBarsValueAndClick_data();
    void upToDateLeavesTheBarsValueAndClick();
    void available();
    void availableChangesInOrder();
    void tooOld();
    void tooOldChangesInOrder();
    void centresTheOfflineToolLine_data();
    void centresTheOfflineToolLine();
    void placesTheUpgradeText_data();
    void placesTheUpgradeText();
};

void StatesTest::theFailureScreenStays_data()
{
    QTest::addColumn<bool>("failureRetry");
    QTest::addColumn<bool>("autoRecover");
    QTest::addColumn<bool>("stays");
    QTest::newRow("failed and armed") << true << true << true;
    QTest::newRow("failed only") << true << false << false;
    QTest::newRow("armed only") << false << true << false;
    QTest::newRow("neither") << false << false << false;
}

void StatesTest::theFailureScreenStays()
{
    QFETCH(bool, failureRetry);
    QFETCH(bool, autoRecover);
    QFETCH(bool, stays);
    Prepared stage(UpgradePlan::Both, u"1.2.3"_s, {});
    OpenPanel &panel = *stage.panel;
    panel.pretendRetryOffer(failureRetry);
    panel.pretendRecovering(autoRecover);
    const QStringList before = Screen::everything(panel);
    stage.log.clear();
    panel.updateScreen();
    QCOMPARE(stage.log.contains(u"[updateUIByUpgradeState] 当前处于失败重试状态，跳过UI更新"_s), stays);
    QCOMPARE(Screen::everything(panel) == before, stays);
    QCOMPARE(stage.server.paths().isEmpty(), stays);
}

void StatesTest::showsTheVersions_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("remote");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("newVersion");
    QTest::addColumn<QString>("currentVersion");
    QTest::newRow("both known, nothing planned")
        << UpgradePlan::None << u"1.2.3"_s << u"1.2.0"_s << u"V1.2.3"_s << u"V1.2.0"_s;
    QTest::newRow("both known, upgrade planned")
        << UpgradePlan::PcOnly << u"1.2.3"_s << u"1.2.0"_s << u"V1.2.3"_s << u"V1.2.0"_s;
    QTest::newRow("server's unknown")
        << UpgradePlan::None << QString() << u"1.2.0"_s << u"former"_s << u"V1.2.0"_s;
    QTest::newRow("device's unknown")
        << UpgradePlan::None << u"1.2.3"_s << QString() << u"V1.2.3"_s << u"former"_s;
    QTest::newRow("none known") << UpgradePlan::Both << QString() << QString() << u"former"_s << u"former"_s;
    QTest::newRow("the server's failure answer, nothing planned")
        << UpgradePlan::None << u"104"_s << u"1.2.0"_s << u"V104"_s << u"V1.2.0"_s;
    QTest::newRow("the server's failure answer, upgrade planned")
        << UpgradePlan::Both << u"104"_s << u"1.2.0"_s << u"V104"_s << u"V1.2.0"_s;
    QTest::newRow("the server's failure answer, device too old")
        << UpgradePlan::Both << u"104"_s << u"1.0.0"_s << u"V104"_s << u"V1.0.0"_s;
    QTest::newRow("no plan of ours") << UpgradePlan(4) << u"1.2.3"_s << u"1.2.0"_s << u"V1.2.3"_s
                                     << u"V1.2.0"_s;
}

void StatesTest::showsTheVersions()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, remote);
    QFETCH(QString, device);
    QFETCH(QString, newVersion);
    QFETCH(QString, currentVersion);
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.newVersion()->setText(u"former"_s);
    panel.currentVersion()->setText(u"former"_s);
    panel.pretendPlan(plan);
    panel.pretendServerVersion(Chip::Pc, remote);
    panel.pretendDeviceVersion(Chip::Pc, device);
    panel.pretendServerVersion(Chip::Otg, u"7.7.7"_s);
    panel.pretendDeviceVersion(Chip::Otg, u"6.6.6"_s);
    panel.updateScreen();
    QCOMPARE(panel.newVersion()->text(), newVersion);
    QCOMPARE(panel.currentVersion()->text(), currentVersion);
}

void StatesTest::anUnknownPlanChangesTheVersionsOnly()
{
    const Prepared stage(UpgradePlan(4), u"1.0.0"_s, {});
    OpenPanel &panel = *stage.panel;
    panel.newVersion()->setText(u"V2.0.0"_s);
    panel.currentVersion()->setText(u"V1.0.0"_s);
    const QStringList before = Screen::everything(panel);
    panel.updateScreen();
    QCOMPARE(Screen::everything(panel), before);
    QCOMPARE(shownScreen(panel), Shown::Nothing);
    QCOMPARE(stage.server.paths(), QStringList());
}

void StatesTest::choosesTheScreen_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("pc");
    QTest::addColumn<QString>("otg");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<Shown>("screen");
    const auto row = [](const char *name, UpgradePlan plan, const char *pc, const char *otg, bool recovering,
                        Shown screen) {
        QTest::newRow(name) << plan << QString::fromLatin1(pc) << QString::fromLatin1(otg) << recovering
                            << screen;
    };
    row("nothing planned", UpgradePlan::None, "1.2.0", "1.2.0", false, Shown::UpToDate);
    row("nothing planned, device old", UpgradePlan::None, "1.0.0", "1.0.0", false, Shown::UpToDate);
    row("nothing planned, nothing known", UpgradePlan::None, "", "", false, Shown::UpToDate);
    row("PC planned", UpgradePlan::PcOnly, "1.2.0", "1.2.0", false, Shown::Available);
    row("OTG planned", UpgradePlan::OtgOnly, "1.2.0", "1.2.0", false, Shown::Available);
    row("both planned", UpgradePlan::Both, "1.2.0", "1.2.0", false, Shown::Available);
    row("PC below the minimum", UpgradePlan::PcOnly, "1.0.9", "1.2.0", false, Shown::TooOld);
    row("PC below the minimum, OTG planned", UpgradePlan::OtgOnly, "1.0.9", "1.2.0", false, Shown::TooOld);
    row("OTG below the minimum, PC planned", UpgradePlan::PcOnly, "1.2.0", "1.1.0", false, Shown::TooOld);
    row("both below the minimum", UpgradePlan::Both, "1.0.9", "1.1.0", false, Shown::TooOld);
    row("PC at the minimum, OTG unknown", UpgradePlan::PcOnly, "1.1.1", "", false, Shown::Available);
    row("OTG at the minimum, PC unknown", UpgradePlan::OtgOnly, "", "1.1.1", false, Shown::Available);
    row("PC below the minimum, OTG unknown", UpgradePlan::Both, "1.1", "", false, Shown::TooOld);
    row("nothing known", UpgradePlan::Both, "", "", false, Shown::Available);
    row("broken firmware", UpgradePlan::Both, "0.0.0", "0.0.0", false, Shown::TooOld);
    row("PC below the minimum while recovering", UpgradePlan::PcOnly, "1.0.9", "1.2.0", true,
        Shown::Available);
    row("both below the minimum while recovering", UpgradePlan::Both, "0.0.0", "0.0.0", true,
        Shown::Available);
}

void StatesTest::choosesTheScreen()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, pc);
    QFETCH(QString, otg);
    QFETCH(bool, recovering);
    QFETCH(Shown, screen);
    Prepared stage(plan, pc, {});
    OpenPanel &panel = *stage.panel;
    panel.pretendDeviceVersion(Chip::Otg, otg);
    panel.pretendRecovering(recovering);
    stage.log.clear();
    panel.updateScreen();
    QCOMPARE(shownScreen(panel), screen);
    const QString blocked
        = u"[VersionCheck] firmware too old, upgrade blocked. PC: "_s + pc + u"  OTG: "_s + otg;
    QCOMPARE(stage.log.startingWith(u"[VersionCheck]"_s),
             screen == Shown::TooOld ? QStringList{blocked} : QStringList());
}

void StatesTest::upToDate()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendDeviceVersion(Chip::Pc, u"2.0.0"_s);
    panel.pretendServerVersion(Chip::Pc, u"2.0.0"_s);
    panel.notes()->setPlainText(u"former notes"_s);
    panel.updateScreen();
    QCOMPARE(shownScreen(panel), Shown::UpToDate);
    QCOMPARE(panel.notes()->toPlainText(), u"--"_s);
    QCOMPARE(panel.upgradeText()->text(), u"立即升级"_s);
    QCOMPARE(panel.upgradeText()->styleSheet(), QLatin1String(kDimmed));
    QCOMPARE(stage.server.paths(), QStringList());
    for (const QLabel *visible :
         {panel.noNewFirmware(), panel.upgradeText(), panel.currentVersion(), panel.card()})
        QVERIFY2(visible->isVisibleTo(&panel), qPrintable(visible->objectName()));
}

void StatesTest::upToDateChangesInOrder()
{
    const QStringList hiddenThen{u"m_tooOldLb"_s, u"m_offlineToolIconLb"_s, u"m_offlineToolTipLb"_s,
                                 u"m_offlineToolLinkLb"_s};
    const QStringList hiddenLater{u"m_newVerTitleLb"_s, u"m_newVerDotLb"_s, u"m_newVerLb"_s,
                                  u"m_doneIconLb"_s,    u"m_doneLb"_s,      u"m_rocketLb"_s};
    const QStringList hiddenLast{u"upgradeProgDisPlay"_s};
    const Prepared stage(UpgradePlan::None, u"2.0.0"_s, hiddenThen + hiddenLater + hiddenLast);
    const VisibilityRecorder recorder(*stage.panel);
    stage.panel->updateScreen();
    QCOMPARE(recorder.changes,
             hidden(hiddenThen) + shown({u"m_noNewFirmwareLb"_s}) + hidden(hiddenLater)
                 + shown({u"m_upgradeTextLb"_s}) + hidden(hiddenLast));
}

void StatesTest::upToDateLeavesTheBarsValueAndClick_data()
{
    QTest::addColumn<bool>("clickable");
    QTest::newRow("clickable") << true;
    QTest::newRow("not clickable") << false;
}

void StatesTest::upToDateLeavesTheBarsValueAndClick()
{
    QFETCH(bool, clickable);
    const PanelStage stage;
    ClickableProgressBar &bar = *stage.panel->bar();
    bar.setClickable(clickable);
    bar.setValue(42);
    bar.setBorderColor(Qt::red);
    bar.setBorderWidth(3);
    stage.panel->updateScreen();
    QCOMPARE(bar.isClickable(), clickable);
    QCOMPARE(bar.value(), 42);
    QCOMPARE(stage.panel->barBorderWidth(), 3.0);
}

void StatesTest::available()
{
    const Prepared stage(UpgradePlan::Both, u"1.2.0"_s, {});
    OpenPanel &panel = *stage.panel;
    ClickableProgressBar &bar = *panel.bar();
    bar.setClickable(false);
    bar.setValue(42);
    bar.setBorderColor(Qt::red);
    bar.setBorderWidth(3);
    panel.updateScreen();
    QCOMPARE(shownScreen(panel), Shown::Available);
    QVERIFY(bar.isClickable());
    QCOMPARE(bar.value(), 0);
    QCOMPARE(panel.barBorderWidth(), 0.0);
    QCOMPARE(panel.barBorder(), QColor(Qt::transparent));
    QCOMPARE(panel.upgradeText()->text(), u"立即升级"_s);
    QCOMPARE(panel.upgradeText()->styleSheet(), QLatin1String(kWhite));
    QVERIFY(isOnTopOfTheBar(panel, panel.upgradeText()));
    QCOMPARE(panel.newVersion()->text(), u"V2.0.0"_s);
    QCOMPARE(panel.notes()->toPlainText(), u"中文说明"_s);
}

void StatesTest::availableChangesInOrder()
{
    const QStringList hiddenThen{u"m_tooOldLb"_s,          u"m_offlineToolIconLb"_s, u"m_offlineToolTipLb"_s,
                                 u"m_offlineToolLinkLb"_s, u"m_doneIconLb"_s,        u"m_doneLb"_s,
                                 u"m_waitingIconLb"_s,     u"m_upgradingLb"_s,       u"m_failIconLb"_s,
                                 u"m_failTextLb"_s,        u"upgradeProgDisPlay"_s};
    const QStringList hiddenLater{u"m_noNewFirmwareLb"_s};
    const Prepared stage(UpgradePlan::PcOnly, u"1.2.0"_s, hiddenThen + hiddenLater);
    const VisibilityRecorder recorder(*stage.panel);
    stage.panel->updateScreen();
    QCOMPARE(recorder.changes,
             hidden(hiddenThen) + shown({u"m_rocketLb"_s, u"m_upgradeTextLb"_s}) + hidden(hiddenLater)
                 + shown({u"m_newVerTitleLb"_s, u"m_newVerDotLb"_s, u"m_newVerLb"_s, u"m_notesEdit"_s}));
}

void StatesTest::tooOld()
{
    const Prepared stage(UpgradePlan::PcOnly, u"1.0.9"_s, {});
    OpenPanel &panel = *stage.panel;
    panel.bar()->setClickable(true);
    panel.bar()->setValue(42);
    panel.updateScreen();
    QCOMPARE(shownScreen(panel), Shown::TooOld);
    QVERIFY(!panel.bar()->isClickable());
    QCOMPARE(panel.bar()->value(), 42);
    QVERIFY(isOnTopOfTheBar(panel, panel.tooOldText()));
    QCOMPARE(panel.newVersion()->text(), u"V2.0.0"_s);
    QCOMPARE(panel.notes()->toPlainText(), u"中文说明"_s);
}

void StatesTest::tooOldChangesInOrder()
{
    const QStringList hiddenThen{u"m_rocketLb"_s, u"m_upgradeTextLb"_s};
    const QStringList hiddenLater{u"upgradeProgDisPlay"_s, u"m_noNewFirmwareLb"_s};
    const QStringList hiddenLast{u"m_doneIconLb"_s, u"m_doneLb"_s};
    const Prepared stage(UpgradePlan::PcOnly, u"1.0.9"_s, hiddenThen + hiddenLater + hiddenLast);
    const VisibilityRecorder recorder(*stage.panel);
    stage.panel->updateScreen();
    QCOMPARE(recorder.changes,
             hidden(hiddenThen) + shown({u"m_tooOldLb"_s}) + hidden(hiddenLater)
                 + shown({u"m_newVerTitleLb"_s, u"m_newVerDotLb"_s, u"m_newVerLb"_s}) + hidden(hiddenLast)
                 + shown({u"m_offlineToolIconLb"_s, u"m_offlineToolTipLb"_s, u"m_offlineToolLinkLb"_s,
                          u"m_notesEdit"_s}));
}

void StatesTest::centresTheOfflineToolLine_data()
{
    QTest::addColumn<Language>("language");
    QTest::newRow("Chinese") << Language::Chinese;
    QTest::newRow("English") << Language::English;
}

void StatesTest::centresTheOfflineToolLine()
{
    QFETCH(Language, language);
    const Prepared stage(UpgradePlan::PcOnly, u"1.0.9"_s, {});
    OpenPanel &panel = *stage.panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    for (QLabel *label : {panel.offlineToolIcon(), panel.offlineToolTip(), panel.offlineToolLink()})
        label->setGeometry(0, 0, 7, 7);
    panel.updateScreen();
    const QLabel *tip = panel.offlineToolTip();
    const QLabel *link = panel.offlineToolLink();
    QCOMPARE(tip->size(), tip->sizeHint());
    QCOMPARE(link->size(), link->sizeHint());
    const int start = (380 - link->width() - tip->width()) / 2 + 32;
    QCOMPARE(panel.offlineToolIcon()->geometry(), QRect(start, (tip->height() - 24) / 2 + 319, 24, 24));
    QCOMPARE(tip->pos(), QPoint(start + 28, 319));
    QCOMPARE(link->pos(), QPoint(start + 28 + tip->width(), 319));
}

void StatesTest::placesTheUpgradeText_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("place");
    QTest::newRow("up to date, Chinese")
        << Language::Chinese << UpgradePlan::None << u"立即升级"_s << QRect(172, 13, 64, 21);
    QTest::newRow("up to date, English")
        << Language::English << UpgradePlan::None << u"Update Now"_s << QRect(156, 13, 105, 21);
    QTest::newRow("available, Chinese")
        << Language::Chinese << UpgradePlan::Both << u"立即升级"_s << QRect(186, 13, 64, 21);
    QTest::newRow("available, English")
        << Language::English << UpgradePlan::Both << u"Update Now"_s << QRect(170, 13, 105, 21);
}

void StatesTest::placesTheUpgradeText()
{
    QFETCH(Language, language);
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    const Prepared stage(plan, u"1.2.0"_s, {});
    QuillonFirmwareUpgrade::setLanguage(language);
    QLabel *label = stage.panel->upgradeText();
    label->setText(u"former"_s);
    label->setGeometry(0, 0, 7, 7);
    stage.panel->updateScreen();
    QCOMPARE(label->text(), text);
    QCOMPARE(label->geometry(), place);
    QVERIFY2(label->styleSheet().contains(u"\"Microsoft YaHei\""_s),
             "both styles name this family in either language");
}

QUILLON_TEST(StatesTest)
#include "tst_states.moc"
