#include "tests/panel/PanelStage.h"
#include "tests/support/PanelState.h"
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
Shown shownScreen(const FirmwareUpgradeWidget &panel)
{
    const QColor colour = panel.m_progressBar->m_backgroundColor;
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
        panel->m_upgradePlan = plan;
        panel->m_devicePcVersion = pcVersion;
        panel->m_remotePcVersion = u"2.0.0"_s;
        panel->m_progressBar->setBackgroundColor(Qt::black);
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

bool isOnTopOfTheBar(const FirmwareUpgradeWidget &panel, const QLabel *label)
{
    return panel.m_progressBar->children().last() == label;
}

} // namespace

Q_DECLARE_METATYPE(Shown)

class TestStates : public QObject {
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

void TestStates::theFailureScreenStays_data()
{
    QTest::addColumn<bool>("failureRetry");
    QTest::addColumn<bool>("autoRecover");
    QTest::addColumn<bool>("stays");
    QTest::newRow("failed and armed") << true << true << true;
    QTest::newRow("failed only") << true << false << false;
    QTest::newRow("armed only") << false << true << false;
    QTest::newRow("neither") << false << false << false;
}

void TestStates::theFailureScreenStays()
{
    QFETCH(bool, failureRetry);
    QFETCH(bool, autoRecover);
    QFETCH(bool, stays);
    Prepared stage(UpgradePlan::Both, u"1.2.3"_s, {});
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_inFailureRetry = failureRetry;
    panel.m_autoRecoverRunning = autoRecover;
    const QStringList before = Screen::everything(panel);
    stage.log.clear();
    panel.updateUIByUpgradeState();
    QCOMPARE(stage.log.contains(u"[updateUIByUpgradeState] 当前处于失败重试状态，跳过UI更新"_s), stays);
    QCOMPARE(Screen::everything(panel) == before, stays);
    QCOMPARE(stage.server.paths().isEmpty(), stays);
}

void TestStates::showsTheVersions_data()
{
    QTest::addColumn<int>("plan");
    QTest::addColumn<QString>("remote");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("newVersion");
    QTest::addColumn<QString>("currentVersion");
    QTest::newRow("both known, nothing planned")
        << 0 << u"1.2.3"_s << u"1.2.0"_s << u"V1.2.3"_s << u"V1.2.0"_s;
    QTest::newRow("both known, upgrade planned")
        << 1 << u"1.2.3"_s << u"1.2.0"_s << u"V1.2.3"_s << u"V1.2.0"_s;
    QTest::newRow("server's unknown") << 0 << QString() << u"1.2.0"_s << u"former"_s << u"V1.2.0"_s;
    QTest::newRow("device's unknown") << 0 << u"1.2.3"_s << QString() << u"V1.2.3"_s << u"former"_s;
    QTest::newRow("none known") << 3 << QString() << QString() << u"former"_s << u"former"_s;
    QTest::newRow("the server's failure answer, nothing planned")
        << 0 << u"104"_s << u"1.2.0"_s << u"V104"_s << u"V1.2.0"_s;
    QTest::newRow("the server's failure answer, upgrade planned")
        << 3 << u"104"_s << u"1.2.0"_s << u"V104"_s << u"V1.2.0"_s;
    QTest::newRow("the server's failure answer, device too old")
        << 3 << u"104"_s << u"1.0.0"_s << u"V104"_s << u"V1.0.0"_s;
    QTest::newRow("no plan of ours") << 4 << u"1.2.3"_s << u"1.2.0"_s << u"V1.2.3"_s << u"V1.2.0"_s;
}

void TestStates::showsTheVersions()
{
    QFETCH(int, plan);
    QFETCH(QString, remote);
    QFETCH(QString, device);
    QFETCH(QString, newVersion);
    QFETCH(QString, currentVersion);
    const PanelStage stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_newVerLb->setText(u"former"_s);
    panel.m_curVerLb->setText(u"former"_s);
    panel.m_upgradePlan = UpgradePlan(plan);
    panel.m_remotePcVersion = remote;
    panel.m_devicePcVersion = device;
    panel.m_remoteOtgVersion = u"7.7.7"_s;
    panel.m_deviceOtgVersion = u"6.6.6"_s;
    panel.updateUIByUpgradeState();
    QCOMPARE(panel.m_newVerLb->text(), newVersion);
    QCOMPARE(panel.m_curVerLb->text(), currentVersion);
}

void TestStates::anUnknownPlanChangesTheVersionsOnly()
{
    const Prepared stage(UpgradePlan(4), u"1.0.0"_s, {});
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_newVerLb->setText(u"V2.0.0"_s);
    panel.m_curVerLb->setText(u"V1.0.0"_s);
    const QStringList before = Screen::everything(panel);
    panel.updateUIByUpgradeState();
    QCOMPARE(Screen::everything(panel), before);
    QCOMPARE(shownScreen(panel), Shown::Nothing);
    QCOMPARE(stage.server.paths(), QStringList());
}

void TestStates::choosesTheScreen_data()
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

void TestStates::choosesTheScreen()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, pc);
    QFETCH(QString, otg);
    QFETCH(bool, recovering);
    QFETCH(Shown, screen);
    Prepared stage(plan, pc, {});
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_deviceOtgVersion = otg;
    panel.m_autoRecoverRunning = recovering;
    stage.log.clear();
    panel.updateUIByUpgradeState();
    QCOMPARE(shownScreen(panel), screen);
    const QString blocked
        = u"[VersionCheck] firmware too old, upgrade blocked. PC:"_s + pc + u" OTG:"_s + otg;
    QCOMPARE(stage.log.startingWith(u"[VersionCheck]"_s),
             screen == Shown::TooOld ? QStringList{blocked} : QStringList());
}

void TestStates::upToDate()
{
    const PanelStage stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_devicePcVersion = panel.m_remotePcVersion = u"2.0.0"_s;
    panel.m_notesEdit->setPlainText(u"former notes"_s);
    panel.updateUIByUpgradeState();
    QCOMPARE(shownScreen(panel), Shown::UpToDate);
    QCOMPARE(panel.m_notesEdit->toPlainText(), u"--"_s);
    QCOMPARE(panel.m_upgradeTextLb->text(), u"立即升级"_s);
    QCOMPARE(panel.m_upgradeTextLb->styleSheet(), QLatin1String(kDimmed));
    QCOMPARE(stage.server.paths(), QStringList());
    for (const QLabel *visible :
         {panel.m_noNewFirmwareLb, panel.m_upgradeTextLb, panel.m_curVerLb, panel.verCompLb})
        QVERIFY2(visible->isVisibleTo(&panel), qPrintable(visible->objectName()));
}

void TestStates::upToDateChangesInOrder()
{
    const QStringList hiddenThen{u"m_tooOldLb"_s, u"m_offlineToolIconLb"_s, u"m_offlineToolTipLb"_s,
                                 u"m_offlineToolLinkLb"_s};
    const QStringList hiddenLater{u"m_newVerTitleLb"_s, u"m_newVerDotLb"_s, u"m_newVerLb"_s,
                                  u"m_doneIconLb"_s,    u"m_doneLb"_s,      u"m_rocketLb"_s};
    const QStringList hiddenLast{u"upgradeProgDisPlay"_s};
    const Prepared stage(UpgradePlan::None, u"2.0.0"_s, hiddenThen + hiddenLater + hiddenLast);
    const VisibilityRecorder recorder(*stage.panel);
    stage.panel->updateUIByUpgradeState();
    QCOMPARE(recorder.changes,
             hidden(hiddenThen) + shown({u"m_noNewFirmwareLb"_s}) + hidden(hiddenLater)
                 + shown({u"m_upgradeTextLb"_s}) + hidden(hiddenLast));
}

void TestStates::upToDateLeavesTheBarsValueAndClick_data()
{
    QTest::addColumn<bool>("clickable");
    QTest::newRow("clickable") << true;
    QTest::newRow("not clickable") << false;
}

void TestStates::upToDateLeavesTheBarsValueAndClick()
{
    QFETCH(bool, clickable);
    const PanelStage stage;
    ClickableProgressBar &bar = *stage.panel->m_progressBar;
    bar.setClickable(clickable);
    bar.setValue(42);
    bar.setBorderColor(Qt::red);
    bar.setBorderWidth(3);
    stage.panel->updateUIByUpgradeState();
    QCOMPARE(bar.isClickable(), clickable);
    QCOMPARE(bar.value(), 42);
    QCOMPARE(bar.m_borderWidth, 3.0);
}

void TestStates::available()
{
    const Prepared stage(UpgradePlan::Both, u"1.2.0"_s, {});
    FirmwareUpgradeWidget &panel = *stage.panel;
    ClickableProgressBar &bar = *panel.m_progressBar;
    bar.setClickable(false);
    bar.setValue(42);
    bar.setBorderColor(Qt::red);
    bar.setBorderWidth(3);
    panel.updateUIByUpgradeState();
    QCOMPARE(shownScreen(panel), Shown::Available);
    QVERIFY(bar.isClickable());
    QCOMPARE(bar.value(), 0);
    QCOMPARE(bar.m_borderWidth, 0.0);
    QCOMPARE(bar.m_borderColor, QColor(Qt::transparent));
    QCOMPARE(panel.m_upgradeTextLb->text(), u"立即升级"_s);
    QCOMPARE(panel.m_upgradeTextLb->styleSheet(), QLatin1String(kWhite));
    QVERIFY(isOnTopOfTheBar(panel, panel.m_upgradeTextLb));
    QCOMPARE(panel.m_newVerLb->text(), u"V2.0.0"_s);
    QCOMPARE(panel.m_notesEdit->toPlainText(), u"中文说明"_s);
}

void TestStates::availableChangesInOrder()
{
    const QStringList hiddenThen{u"m_tooOldLb"_s,          u"m_offlineToolIconLb"_s, u"m_offlineToolTipLb"_s,
                                 u"m_offlineToolLinkLb"_s, u"m_doneIconLb"_s,        u"m_doneLb"_s,
                                 u"m_waitingIconLb"_s,     u"m_upgradingLb"_s,       u"m_failIconLb"_s,
                                 u"m_failTextLb"_s,        u"upgradeProgDisPlay"_s};
    const QStringList hiddenLater{u"m_noNewFirmwareLb"_s};
    const Prepared stage(UpgradePlan::PcOnly, u"1.2.0"_s, hiddenThen + hiddenLater);
    const VisibilityRecorder recorder(*stage.panel);
    stage.panel->updateUIByUpgradeState();
    QCOMPARE(recorder.changes,
             hidden(hiddenThen) + shown({u"m_rocketLb"_s, u"m_upgradeTextLb"_s}) + hidden(hiddenLater)
                 + shown({u"m_newVerTitleLb"_s, u"m_newVerDotLb"_s, u"m_newVerLb"_s, u"m_notesEdit"_s}));
}

void TestStates::tooOld()
{
    const Prepared stage(UpgradePlan::PcOnly, u"1.0.9"_s, {});
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_progressBar->setClickable(true);
    panel.m_progressBar->setValue(42);
    panel.updateUIByUpgradeState();
    QCOMPARE(shownScreen(panel), Shown::TooOld);
    QVERIFY(!panel.m_progressBar->isClickable());
    QCOMPARE(panel.m_progressBar->value(), 42);
    QVERIFY(isOnTopOfTheBar(panel, panel.m_tooOldLb));
    QCOMPARE(panel.m_newVerLb->text(), u"V2.0.0"_s);
    QCOMPARE(panel.m_notesEdit->toPlainText(), u"中文说明"_s);
}

void TestStates::tooOldChangesInOrder()
{
    const QStringList hiddenThen{u"m_rocketLb"_s, u"m_upgradeTextLb"_s};
    const QStringList hiddenLater{u"upgradeProgDisPlay"_s, u"m_noNewFirmwareLb"_s};
    const QStringList hiddenLast{u"m_doneIconLb"_s, u"m_doneLb"_s};
    const Prepared stage(UpgradePlan::PcOnly, u"1.0.9"_s, hiddenThen + hiddenLater + hiddenLast);
    const VisibilityRecorder recorder(*stage.panel);
    stage.panel->updateUIByUpgradeState();
    QCOMPARE(recorder.changes,
             hidden(hiddenThen) + shown({u"m_tooOldLb"_s}) + hidden(hiddenLater)
                 + shown({u"m_newVerTitleLb"_s, u"m_newVerDotLb"_s, u"m_newVerLb"_s}) + hidden(hiddenLast)
                 + shown({u"m_offlineToolIconLb"_s, u"m_offlineToolTipLb"_s, u"m_offlineToolLinkLb"_s,
                          u"m_notesEdit"_s}));
}

void TestStates::centresTheOfflineToolLine_data()
{
    QTest::addColumn<Language>("language");
    QTest::newRow("Chinese") << Language::Chinese;
    QTest::newRow("English") << Language::English;
}

void TestStates::centresTheOfflineToolLine()
{
    QFETCH(Language, language);
    const Prepared stage(UpgradePlan::PcOnly, u"1.0.9"_s, {});
    FirmwareUpgradeWidget &panel = *stage.panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    for (QLabel *label : {panel.m_offlineToolIconLb, panel.m_offlineToolTipLb, panel.m_offlineToolLinkLb})
        label->setGeometry(0, 0, 7, 7);
    panel.updateUIByUpgradeState();
    const QLabel *tip = panel.m_offlineToolTipLb;
    const QLabel *link = panel.m_offlineToolLinkLb;
    QCOMPARE(tip->size(), tip->sizeHint());
    QCOMPARE(link->size(), link->sizeHint());
    const int start = (380 - link->width() - tip->width()) / 2 + 32;
    QCOMPARE(panel.m_offlineToolIconLb->geometry(), QRect(start, (tip->height() - 24) / 2 + 319, 24, 24));
    QCOMPARE(tip->pos(), QPoint(start + 28, 319));
    QCOMPARE(link->pos(), QPoint(start + 28 + tip->width(), 319));
}

void TestStates::placesTheUpgradeText_data()
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

void TestStates::placesTheUpgradeText()
{
    QFETCH(Language, language);
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    const Prepared stage(plan, u"1.2.0"_s, {});
    QuillonFirmwareUpgrade::setLanguage(language);
    QLabel *label = stage.panel->m_upgradeTextLb;
    label->setText(u"former"_s);
    label->setGeometry(0, 0, 7, 7);
    stage.panel->updateUIByUpgradeState();
    QCOMPARE(label->text(), text);
    QCOMPARE(label->geometry(), place);
    QVERIFY2(label->styleSheet().contains(u"\"Microsoft YaHei\""_s),
             "both styles name this family in either language");
}

QUILLON_TEST(TestStates)
#include "tst_states.moc"
