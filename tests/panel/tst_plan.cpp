// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// From four versions to a plan and its announcement, and the device that is too old for it.
#include "tests/panel/PanelTest.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString kTooOldLine = u"[VersionCheck] firmware too old, upgrade blocked. PC: %1  OTG: %2"_s;
constexpr QColor kFailureRed{248, 74, 75};
} // namespace

class PlanTest : public PanelTest {
    Q_OBJECT

private slots:
    void decision_data();
    void decision();
    void decisionIsNotStored();

    void tooOldIsBlocked_data();
    void tooOldIsBlocked();
};

void PlanTest::decision_data()
{
    QTest::addColumn<QString>("devicePc");
    QTest::addColumn<QString>("remotePc");
    QTest::addColumn<QString>("deviceOtg");
    QTest::addColumn<QString>("remoteOtg");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("shown");
    const QString old = u"1.2.0"_s;
    const QString current = u"1.3.0"_s;
    const QString none;
    constexpr auto None = UpgradePlan::None;
    constexpr auto PcOnly = UpgradePlan::PcOnly;
    constexpr auto OtgOnly = UpgradePlan::OtgOnly;
    constexpr auto Both = UpgradePlan::Both;

    QTest::newRow("both up to date") << current << current << current << current << None << current;
    QTest::newRow("PC older") << old << current << current << current << PcOnly << current;
    QTest::newRow("OTG older") << current << current << old << current << OtgOnly << current;
    QTest::newRow("both older") << old << current << old << current << Both << current;
    QTest::newRow("both newer are never downgraded") << current << old << current << old << None << current;
    QTest::newRow("PC newer, OTG older: the device's PC version is shown")
        << current << old << old << current << OtgOnly << current;
    QTest::newRow("PC older, OTG newer") << old << current << current << old << PcOnly << current;
    QTest::newRow("2.0.0 on the device, 1.9.9 on the server")
        << u"2.0.0"_s << u"1.9.9"_s << none << none << None << u"2.0.0"_s;
    QTest::newRow("1.2 equals 1.2.0") << u"1.2"_s << u"1.2.0"_s << none << none << None << u"1.2"_s;
    QTest::newRow("1.0.9 needs 1.1.0, blocked or not")
        << u"1.0.9"_s << u"1.1.0"_s << none << none << PcOnly << u"1.1.0"_s;

    QTest::newRow("nothing known") << none << none << none << none << None << none;
    QTest::newRow("only the server's versions known")
        << none << current << none << current << None << current;
    QTest::newRow("only the device's versions known") << old << none << old << none << None << old;
    QTest::newRow("only the PC version of the device") << old << none << none << none << None << old;
    QTest::newRow("only the PC version of the server") << none << current << none << none << None << current;
    QTest::newRow("only the OTG version of the device") << none << none << old << none << None << none;
    QTest::newRow("only the OTG version of the server") << none << none << none << current << None << none;
    QTest::newRow("OTG older, PC not known: nothing is shown")
        << none << none << old << current << OtgOnly << none;
    QTest::newRow("OTG older, PC of the device known") << old << none << old << current << OtgOnly << old;
    QTest::newRow("PC older, OTG of the device not known")
        << old << current << none << current << PcOnly << current;
    QTest::newRow("PC older, OTG of the server not known")
        << old << current << old << none << PcOnly << current;
    QTest::newRow("no working firmware: 0.0.0")
        << u"0.0.0"_s << current << u"0.0.0"_s << current << Both << current;
}

void PlanTest::decision()
{
    QFETCH(QString, devicePc);
    QFETCH(QString, remotePc);
    QFETCH(QString, deviceOtg);
    QFETCH(QString, remoteOtg);
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, shown);
    panel().pretendVersions(devicePc, remotePc, deviceOtg, remoteOtg);
    QSignalSpy announced(&panel(), &FirmwareUpgradeWidget::upgradeDisplayMsg);

    QCOMPARE(panel().decidePlan(), plan);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0).at(0).toString(), shown);
    QCOMPARE(announced.at(0).at(1).toBool(), plan != UpgradePlan::None);
}

void PlanTest::decisionIsNotStored()
{
    panel().pretendVersions(u"1.2.0"_s, u"1.3.0"_s, u"1.2.0"_s, u"1.3.0"_s);
    const QStringList before = panel().state();

    QCOMPARE(panel().decidePlan(), UpgradePlan::Both);
    QCOMPARE(panel().state(), before);
}

void PlanTest::tooOldIsBlocked_data()
{
    QTest::addColumn<QString>("devicePc");
    QTest::addColumn<QString>("deviceOtg");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("isRecovering");
    QTest::addColumn<bool>("isBlocked");
    const QString old = u"1.0.9"_s;
    const QString good = u"1.2.0"_s;
    QTest::newRow("PC too old") << old << good << UpgradePlan::PcOnly << false << true;
    QTest::newRow("OTG too old") << good << old << UpgradePlan::OtgOnly << false << true;
    QTest::newRow("both too old") << old << old << UpgradePlan::Both << false << true;
    QTest::newRow("PC too old, only the OTG chip to upgrade")
        << old << good << UpgradePlan::OtgOnly << false << true;
    QTest::newRow("OTG too old, only the PC chip to upgrade")
        << good << old << UpgradePlan::PcOnly << false << true;
    QTest::newRow("1.1.0 is too old") << u"1.1.0"_s << good << UpgradePlan::PcOnly << false << true;
    QTest::newRow("1.1.1 is not") << u"1.1.1"_s << u"1.1.1"_s << UpgradePlan::Both << false << false;
    QTest::newRow("unknown OTG version") << u"1.1.1"_s << QString() << UpgradePlan::PcOnly << false << false;
    QTest::newRow("unknown PC version") << QString() << u"1.1.1"_s << UpgradePlan::OtgOnly << false << false;
    QTest::newRow("unknown PC version, OTG too old")
        << QString() << old << UpgradePlan::OtgOnly << false << true;
    QTest::newRow("neither version known") << QString() << QString() << UpgradePlan::Both << false << false;
    QTest::newRow("a recovery is not blocked") << old << old << UpgradePlan::Both << true << false;
    QTest::newRow("nothing to upgrade") << old << old << UpgradePlan::None << false << false;
}

void PlanTest::tooOldIsBlocked()
{
    QFETCH(QString, devicePc);
    QFETCH(QString, deviceOtg);
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, isRecovering);
    QFETCH(bool, isBlocked);
    panel().pretendVersions(devicePc, u"1.3.0"_s, deviceOtg, u"1.3.0"_s);
    panel().pretendPlan(plan);
    panel().pretendRecovering(isRecovering);

    panel().updateScreen();
    QCOMPARE(stage().log.count(kTooOldLine.arg(devicePc, deviceOtg)), isBlocked ? 1 : 0);
    QCOMPARE(panel().bar()->isClickable(), !isBlocked);
    QCOMPARE(panel().barBackground() == kFailureRed, isBlocked);
}

QUILLON_TEST(PlanTest)
#include "tst_plan.moc"
