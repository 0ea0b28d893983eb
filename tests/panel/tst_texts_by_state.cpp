// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/panel/ScreenParts.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;
using QuillonFirmwareUpgrade::setLanguage;
using ScreenParts::retryStyle;

namespace {

/// The retry is offered: what the failure screen sets.
void offerRetry(OpenPanel &panel)
{
    panel.pretendRetryOffer(true);
    panel.pretendRecovering(true);
    panel.pretendUpgrading(false);
}

} // namespace

/// What a change of the language makes of texts and places that depend on the state of the panel.
class TextsByStateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysWhetherAnUpgradeIsPlanned_data();
    void saysWhetherAnUpgradeIsPlanned();
    void placesTheUpgradeText_data();
    void placesTheUpgradeText();
    void leavesTheStyleOfTheUpgradeText();
    void fillsTheNotes_data();
    void fillsTheNotes();
    void asksNoServer();
    void tellsWhereToConnect_data();
    void tellsWhereToConnect();
    void laysOutTheWaitingLine();
};

void TextsByStateTest::saysWhetherAnUpgradeIsPlanned_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("line");
    QTest::newRow("None") << UpgradePlan::None << u" ####retranslateUI isNeedUpgrade is:  false"_s;
    QTest::newRow("PcOnly") << UpgradePlan::PcOnly << u" ####retranslateUI isNeedUpgrade is:  true"_s;
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly << u" ####retranslateUI isNeedUpgrade is:  true"_s;
    QTest::newRow("Both") << UpgradePlan::Both << u" ####retranslateUI isNeedUpgrade is:  true"_s;
    QTest::newRow("no plan of ours") << UpgradePlan(4) << u" ####retranslateUI isNeedUpgrade is:  false"_s;
}

void TextsByStateTest::saysWhetherAnUpgradeIsPlanned()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, line);
    PanelStage stage;
    stage.panel->pretendPlan(plan);
    stage.log.clear();
    stage.panel->retranslate();
    QCOMPARE(stage.log.lines(),
             (QStringList{u"Detected language switch. The language after switching is:  Chinese"_s, line}));
}

void TextsByStateTest::placesTheUpgradeText_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("failureRetry");
    QTest::addColumn<bool>("autoRecover");
    QTest::addColumn<bool>("upgrading");
    QTest::addColumn<QRect>("chinese");
    QTest::addColumn<QRect>("english");
    QTest::addColumn<bool>("retry");

    const QRect retryChinese(116, 13, 176, 21);
    const QRect retryEnglish(46, 13, 317, 21);
    const QRect readyChinese(186, 13, 64, 21);
    const QRect readyEnglish(170, 13, 105, 21);
    const QRect idleChinese(172, 13, 64, 21);
    const QRect idleEnglish(156, 13, 105, 21);
    QTest::newRow("nothing planned") << UpgradePlan::None << false << false << false << idleChinese
                                     << idleEnglish << false;
    QTest::newRow("PC planned") << UpgradePlan::PcOnly << false << false << false << readyChinese
                                << readyEnglish << false;
    QTest::newRow("OTG planned") << UpgradePlan::OtgOnly << false << false << false << readyChinese
                                 << readyEnglish << false;
    QTest::newRow("both planned") << UpgradePlan::Both << false << false << false << readyChinese
                                  << readyEnglish << false;
    QTest::newRow("no plan of ours") << UpgradePlan(4) << false << false << false << idleChinese
                                     << idleEnglish << false;
    QTest::newRow("retry offered, nothing planned")
        << UpgradePlan::None << true << true << false << retryChinese << retryEnglish << true;
    QTest::newRow("retry offered, PC planned")
        << UpgradePlan::PcOnly << true << true << false << retryChinese << retryEnglish << true;
    QTest::newRow("retry offered, OTG planned")
        << UpgradePlan::OtgOnly << true << true << false << retryChinese << retryEnglish << true;
    QTest::newRow("failed but not armed")
        << UpgradePlan::Both << true << false << false << readyChinese << readyEnglish << false;
    QTest::newRow("armed but not failed")
        << UpgradePlan::Both << false << true << false << readyChinese << readyEnglish << false;
    QTest::newRow("failed, armed and upgrading again")
        << UpgradePlan::Both << true << true << true << readyChinese << readyEnglish << false;
    QTest::newRow("upgrading") << UpgradePlan::Both << false << false << true << readyChinese << readyEnglish
                               << false;
}

void TextsByStateTest::placesTheUpgradeText()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, failureRetry);
    QFETCH(bool, autoRecover);
    QFETCH(bool, upgrading);
    QFETCH(bool, retry);
    QFETCH(QRect, chinese);
    QFETCH(QRect, english);
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendPlan(plan);
    panel.pretendRetryOffer(failureRetry);
    panel.pretendRecovering(autoRecover);
    panel.pretendUpgrading(upgrading);

    const QString formerStyle = panel.upgradeText()->styleSheet();
    const QLabel &label = *panel.upgradeText();
    setLanguage(Language::English);
    QCOMPARE(label.geometry(), english);
    QCOMPARE(label.text(), retry ? u"I've replugged the device. Restart update."_s : u"Update Now"_s);
    QCOMPARE(label.styleSheet(), retry ? retryStyle(u"Segoe UI"_s) : formerStyle);
    setLanguage(Language::Chinese);
    QCOMPARE(label.geometry(), chinese);
    QCOMPARE(label.text(), retry ? u"我已拔插设备，重新升级"_s : u"立即升级"_s);
    QCOMPARE(label.styleSheet(), retry ? retryStyle(u"Microsoft YaHei"_s) : formerStyle);
}

void TextsByStateTest::leavesTheStyleOfTheUpgradeText()
{
    const PanelStage stage;
    const QString style = u"QLabel{color:rgba(1,2,3,1);}"_s;
    stage.panel->upgradeText()->setStyleSheet(style);
    setLanguage(Language::English);
    QCOMPARE(stage.panel->upgradeText()->styleSheet(), style);
    offerRetry(*stage.panel);
    setLanguage(Language::English);
    QVERIFY(stage.panel->upgradeText()->styleSheet() != style);
}

void TextsByStateTest::fillsTheNotes_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("chineseNotes");
    QTest::addColumn<QString>("englishNotes");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char *name, Language language, UpgradePlan plan, const QString &notes,
                        const QString &englishNotes, const QString &shown) {
        QTest::newRow(name) << language << plan << notes << englishNotes << shown;
    };
    const QString chinese = u"1. 修复若干问题\n2. 提升稳定性"_s;
    const QString english = u"1. Fixes\n2. Stability"_s;
    const QString former = u"what stood there"_s;
    row("Chinese notes of a planned PC upgrade", Language::Chinese, UpgradePlan::PcOnly, chinese, english,
        chinese);
    row("Chinese notes of a planned OTG upgrade", Language::Chinese, UpgradePlan::OtgOnly, chinese, english,
        chinese);
    row("English notes of a planned upgrade of both", Language::English, UpgradePlan::Both, chinese, english,
        english);
    row("a dash when nothing is planned", Language::Chinese, UpgradePlan::None, chinese, english, u"--"_s);
    row("a dash in English too", Language::English, UpgradePlan::None, chinese, english, u"--"_s);
    row("no Chinese notes: the box keeps its text", Language::Chinese, UpgradePlan::Both, {}, english,
        former);
    row("no English notes: the box keeps its text", Language::English, UpgradePlan::Both, chinese, {},
        former);
    row("no notes and nothing planned: the box keeps its text", Language::English, UpgradePlan::None, chinese,
        {}, former);
    row("only English notes are needed in English", Language::English, UpgradePlan::PcOnly, {}, english,
        english);
}

void TextsByStateTest::fillsTheNotes()
{
    QFETCH(Language, language);
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, chineseNotes);
    QFETCH(QString, englishNotes);
    QFETCH(QString, shown);
    const PanelStage stage;
    stage.panel->notes()->setPlainText(u"what stood there"_s);
    stage.panel->pretendPlan(plan);
    networking_class::getInstance()->f_remark = chineseNotes;
    networking_class::getInstance()->f_remark_en = englishNotes;
    setLanguage(language);
    QCOMPARE(stage.panel->notes()->toPlainText(), shown);
}

void TextsByStateTest::asksNoServer()
{
    const PanelStage stage;
    stage.panel->pretendPlan(UpgradePlan::Both);
    stage.panel->pretendDeviceVersion(Chip::Pc, u"1.1.1"_s);
    networking_class::getInstance()->f_remark_en = u"notes"_s;
    setLanguage(Language::English);
    QCoreApplication::processEvents();
    QCOMPARE(stage.server.paths(), QStringList());
}

void TextsByStateTest::tellsWhereToConnect_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcDone");
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QStringList>("chinese");
    QTest::addColumn<QStringList>("english");

    const QString usb = u"正在检测USB接入..."_s;
    const QString otg = u"正在检测OTG接入..."_s;
    const QString usbEnglish = u"Detecting USB connection..."_s;
    const QString otgEnglish = u"Detecting OTG connection..."_s;
    const QStringList r1Usb{usb, u"请使用USB线连接图示USB口和电脑，\n接入后自动完成升级。"_s};
    const QStringList r1UsbEnglish{
        usbEnglish,
        u"Please use a USB cable to connect the illustrated \nUSB port to the computer. The "
        "upgrade will be\n completed automatically upon connection."_s};
    const QStringList r2Usb{usb, u"请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。"_s};
    const QStringList r2UsbEnglish{
        usbEnglish,
        u"To start the firmware update, use the provided USB\n cables to connect the "
        "DC-5V and USB-C ports as\nshown."_s};
    const QStringList r1Otg{otg, u"请使用配件附带的USB线，接入并保持USB-C和OTG口\n与电脑的连接。"_s};
    const QStringList r1OtgEnglish{
        otgEnglish,
        u"Please use the USB cable provided with the \naccessory to connect and maintain the "
        "connection\n between the USB-C and OTG port to the computer."_s};
    const QStringList r2Otg{otg, u"请使用配件附带USB线接入图示DC-5V和OTG口,\n继续完成升级。"_s};
    const QStringList r2OtgEnglish{otgEnglish,
                                   u"To continue and complete the update, use the provided\nUSB cables to "
                                   "connect the DC-5V and OTG ports as\nshown."_s};

    QTest::newRow("R1, nothing planned")
        << UpgradePlan::None << false << DeviceModel::R1 << r1Usb << r1UsbEnglish;
    QTest::newRow("R2, nothing planned")
        << UpgradePlan::None << false << DeviceModel::R2 << r2Usb << r2UsbEnglish;
    QTest::newRow("R1, PC only") << UpgradePlan::PcOnly << false << DeviceModel::R1 << r1Usb << r1UsbEnglish;
    QTest::newRow("R2, PC only, however far")
        << UpgradePlan::PcOnly << true << DeviceModel::R2 << r2Usb << r2UsbEnglish;
    QTest::newRow("R1, OTG only") << UpgradePlan::OtgOnly << false << DeviceModel::R1 << r1Otg
                                  << r1OtgEnglish;
    QTest::newRow("R2, OTG only") << UpgradePlan::OtgOnly << false << DeviceModel::R2 << r2Otg
                                  << r2OtgEnglish;
    QTest::newRow("R1, both, PC not done")
        << UpgradePlan::Both << false << DeviceModel::R1 << r1Usb << r1UsbEnglish;
    QTest::newRow("R2, both, PC not done")
        << UpgradePlan::Both << false << DeviceModel::R2 << r2Usb << r2UsbEnglish;
    QTest::newRow("R1, both, PC done")
        << UpgradePlan::Both << true << DeviceModel::R1 << r1Otg << r1OtgEnglish;
    QTest::newRow("R2, both, PC done")
        << UpgradePlan::Both << true << DeviceModel::R2 << r2Otg << r2OtgEnglish;
    QTest::newRow("any other model is R2")
        << UpgradePlan::OtgOnly << false << DeviceModel(5) << r2Otg << r2OtgEnglish;
}

void TextsByStateTest::tellsWhereToConnect()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcDone);
    QFETCH(DeviceModel, model);
    QFETCH(QStringList, chinese);
    QFETCH(QStringList, english);
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendPlan(plan);
    panel.pretendPcDone(pcDone);
    panel.pretendModel(model);
    setLanguage(Language::English);
    QCOMPARE((QStringList{panel.detectingText()->text(), panel.cableHint()->text()}), english);
    setLanguage(Language::Chinese);
    QCOMPARE((QStringList{panel.detectingText()->text(), panel.cableHint()->text()}), chinese);
}

void TextsByStateTest::laysOutTheWaitingLine()
{
    const PanelStage stage;
    stage.panel->pretendWaitingForCable(false);
    setLanguage(Language::English);
    QCOMPARE(stage.panel->waitingText()->text(), u"Updating... Do not turn off the device."_s);
    QCOMPARE(stage.panel->waitingText()->geometry(), QRect(76, 13, 310, 21));
    QCOMPARE(stage.panel->waitingIcon()->geometry(), QRect(44, 12, 24, 24));
}

QUILLON_TEST(TextsByStateTest)
#include "tst_texts_by_state.moc"
