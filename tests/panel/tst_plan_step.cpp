// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// When the versions that came in may change the plan, and what the user sees of it.
#include "tests/panel/PanelTest.h"
#include "tests/support/DeviceReplies.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
/// Reads nothing and asks nothing, but is followed by the plan step.
const QByteArray kOtherReply = DeviceReplies::version(0x0033, {1, 1, 1});

const QString kWaitingLine = u"[VersionRead] 升级后等待期，跳过UI刷新  PC: %1  OTG: %2"_s;
const QString kKeptLine = u"[Upgrade] 升级进行中，保持当前升级计划:  %1  PC版本: %2  OTG版本: %3"_s;
} // namespace

class PlanStepTest : public PanelTest {
    Q_OBJECT

private slots:
    void planStepNeedsItsVersions_data();
    void planStepNeedsItsVersions();
    void idlePanelTakesThePlan_data();
    void idlePanelTakesThePlan();
    void screenIsRefreshedBeforeThePlanIsLogged();
    void runningUpgradeKeepsThePlan_data();
    void runningUpgradeKeepsThePlan();

    void waitAfterAnUpgradeIsSilent_data();
    void waitAfterAnUpgradeIsSilent();
    void waitComesBeforeARunningUpgrade();
    void nextReadAfterTheWaitIsLoud();

private:
    QString shownNumber() const { return panel().newVersion()->text(); }
};

void PlanStepTest::planStepNeedsItsVersions_data()
{
    QTest::addColumn<QStringList>("versions"); // PC of device and server, OTG of device and server
    QTest::addColumn<bool>("isTaken");
    const QString old = u"1.2.0"_s;
    const QString current = u"1.3.0"_s;
    const QString failed = u"104"_s;
    QTest::newRow("all four known") << QStringList{old, current, current, current} << true;
    QTest::newRow("PC query failed") << QStringList{old, failed, old, current} << false;
    QTest::newRow("OTG query failed") << QStringList{old, current, old, failed} << false;
    QTest::newRow("both queries failed") << QStringList{old, failed, old, failed} << false;
    QTest::newRow("PC version of the device not known")
        << QStringList{QString(), current, old, current} << false;
    QTest::newRow("OTG version of the device not known")
        << QStringList{old, current, QString(), current} << false;
    QTest::newRow("OTG version of the server never fetched")
        << QStringList{old, current, old, QString()} << true;
    QTest::newRow("PC version of the server came back empty")
        << QStringList{old, QString(), old, current} << true;
    QTest::newRow("a device of version 104 is no failure")
        << QStringList{failed, current, failed, current} << true;
    QTest::newRow("a server version that begins with 104 is no failure")
        << QStringList{old, u"104.0.0"_s, old, current} << true;
}

void PlanStepTest::planStepNeedsItsVersions()
{
    QFETCH(QStringList, versions);
    QFETCH(bool, isTaken);
    panel().pretendVersions(versions.at(0), versions.at(1), versions.at(2), versions.at(3));
    constexpr auto former = UpgradePlan(42); // of an earlier read, and recognisable
    panel().pretendPlan(former);
    QSignalSpy announced(&panel(), &FirmwareUpgradeWidget::upgradeDisplayMsg);

    panel().receive(kOtherReply);
    QCOMPARE(announced.count(), isTaken ? 1 : 0);
    QCOMPARE(panel().plan() != former, isTaken);
}

void PlanStepTest::idlePanelTakesThePlan_data()
{
    QTest::addColumn<QString>("devicePc");
    QTest::addColumn<QString>("deviceOtg");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("line");
    QTest::newRow("None") << u"1.3.0"_s << u"1.3.0"_s << UpgradePlan::None << u"[Upgrade] 不需要升级"_s;
    QTest::newRow("PcOnly") << u"1.2.0"_s << u"1.3.0"_s << UpgradePlan::PcOnly
                            << u"[Upgrade] 需要升级 PC 固件。device= 1.2.0 remote= 1.3.0"_s;
    QTest::newRow("OtgOnly") << u"1.3.0"_s << u"1.2.0"_s << UpgradePlan::OtgOnly
                             << u"[Upgrade] 需要升级 OTG 固件"_s;
    QTest::newRow("Both") << u"1.2.0"_s << u"1.2.0"_s << UpgradePlan::Both
                          << u"[Upgrade] PC + OTG 都需要升级 （先升级PC再升级OTG）"_s;
}

void PlanStepTest::idlePanelTakesThePlan()
{
    QFETCH(QString, devicePc);
    QFETCH(QString, deviceOtg);
    QFETCH(QString, line);
    panel().pretendVersions(devicePc, u"1.3.0"_s, deviceOtg, u"1.3.0"_s);

    panel().receive(kOtherReply);
    QTEST(panel().plan(), "plan");
    QCOMPARE(stage().log.startingWith(u"[Upgrade]"_s), QStringList(line));
    QCOMPARE(shownNumber(), u"V1.3.0"_s); // the screen is refreshed
}

void PlanStepTest::screenIsRefreshedBeforeThePlanIsLogged()
{
    panel().pretendVersions(u"1.2.0"_s, u"1.3.0"_s, u"1.3.0"_s, u"1.3.0"_s);

    panel().receive(kOtherReply);
    const QString notesLine = stage().log.startingWith(u"######22222 isChinese is: "_s).value(0);
    QVERIFY(!notesLine.isEmpty());
    QCOMPARE(stage().log.lines().constLast(), u"[Upgrade] 需要升级 PC 固件。device= 1.2.0 remote= 1.3.0"_s);
}

void PlanStepTest::runningUpgradeKeepsThePlan_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("name");
    QTest::newRow("None reads OtgOnly") << UpgradePlan::None << u"OtgOnly"_s;
    QTest::newRow("PcOnly") << UpgradePlan::PcOnly << u"PcOnly"_s;
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly << u"OtgOnly"_s;
    QTest::newRow("Both") << UpgradePlan::Both << u"Both"_s;
}

void PlanStepTest::runningUpgradeKeepsThePlan()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, name);
    panel().pretendVersions(u"1.2.0"_s, u"1.3.0"_s, u"1.2.4"_s, u"1.2.4"_s);
    panel().pretendUpgrading(true);
    panel().pretendPlan(plan);
    const QStringList before = panel().state();
    const QStringList screen = Screen::everything(panel());
    QSignalSpy announced(&panel(), &FirmwareUpgradeWidget::upgradeDisplayMsg);

    panel().receive(kOtherReply);
    QCOMPARE(stage().log.lines().mid(1), QStringList(kKeptLine.arg(name, u"1.2.0"_s, u"1.2.4"_s)));
    QCOMPARE(panel().state(), before);
    QCOMPARE(Screen::everything(panel()), screen);
    QCOMPARE(announced.count(), 0);
}

void PlanStepTest::waitAfterAnUpgradeIsSilent_data()
{
    QTest::addColumn<QString>("devicePc");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::newRow("the new version is there") << u"1.3.0"_s << UpgradePlan::None;
    QTest::newRow("the device still has the old one") << u"1.2.0"_s << UpgradePlan::PcOnly;
}

void PlanStepTest::waitAfterAnUpgradeIsSilent()
{
    QFETCH(QString, devicePc);
    QFETCH(UpgradePlan, plan);
    panel().pretendVersions(devicePc, u"1.3.0"_s, u"1.2.4"_s, u"1.2.4"_s);
    panel().pretendAwaitingNewVersions(true);
    panel().pretendNotReadyReplies(3);
    panel().pretendPlan(UpgradePlan::Both);
    const QStringList screen = Screen::everything(panel());
    QSignalSpy announced(&panel(), &FirmwareUpgradeWidget::upgradeDisplayMsg);

    panel().receive(kOtherReply);
    QCOMPARE(stage().log.lines().mid(1), QStringList(kWaitingLine.arg(devicePc, u"1.2.4"_s)));
    QVERIFY(!panel().awaitsNewVersions());
    QCOMPARE(panel().notReadyReplies(), 0);
    QCOMPARE(panel().plan(), plan);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(Screen::everything(panel()), screen);
    QCOMPARE(stage().server.paths(), QStringList());
}

void PlanStepTest::waitComesBeforeARunningUpgrade()
{
    panel().pretendVersions(u"1.3.0"_s, u"1.3.0"_s, u"1.2.4"_s, u"1.2.4"_s);
    panel().pretendAwaitingNewVersions(true);
    panel().pretendUpgrading(true);
    panel().pretendPlan(UpgradePlan::Both);

    panel().receive(kOtherReply);
    QVERIFY(!panel().awaitsNewVersions());
    QCOMPARE(panel().plan(), UpgradePlan::None);
    QCOMPARE(stage().log.startingWith(u"[Upgrade]"_s), QStringList());
}

void PlanStepTest::nextReadAfterTheWaitIsLoud()
{
    panel().pretendVersions(u"1.3.0"_s, u"1.3.0"_s, u"1.2.4"_s, u"1.2.4"_s);
    panel().pretendAwaitingNewVersions(true);
    panel().receive(kOtherReply);

    panel().receive(kOtherReply);
    QCOMPARE(stage().log.startingWith(u"[Upgrade]"_s), QStringList(u"[Upgrade] 不需要升级"_s));
    QCOMPARE(shownNumber(), u"V1.3.0"_s);
}

QUILLON_TEST(PlanStepTest)
#include "tst_plan_step.moc"
