// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a list of device paths leads to besides a connection: a recovery, or the announcement of the OTG
// interface.
#include "tests/device/ScanTest.h"
#include "tests/device/Scans.h"
#include "tests/support/TestProgram.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Scans;

namespace {
const QString kRecoveryFlags = u"$$#####----=-=== m_isUpgrading is :  %1  m_autoRecoverRunning is:  %2"_s;
const QString kRecoveryStarted = u"find DFU PID and trigger auto recover."_s;
const QString kOtgTrigger = u"OTG already present, trigger OTG upgrade directly"_s;
const QString kOtgMissing = u"OTG ready phase, but OTG device not found yet"_s;
const QString kOtgTooEarly = u"find r2 otg device, but not ready for OTG upgrade yet"_s;
} // namespace

class ScanDecisionsTest : public ScanTest {
    Q_OBJECT

private slots:
    void bootLoaderStartsARecovery();
    void bootLoaderStartsNothing_data();
    void bootLoaderStartsNothing();
    void recoveryFlagsStandWhenTheSignalComes();

    void otgPhase_data();
    void otgPhase();
    void otgPhaseOpensAndRecoversNothing();
    void otgBeforeItsPhase_data();
    void otgBeforeItsPhase();
};

void ScanDecisionsTest::bootLoaderStartsARecovery()
{
    stage().server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::version("1.2.3"));
    stage().server.answer(ServerPaths::kR2OtgVersion, ScriptedHttpServer::version("1.2.4"));
    QSignalSpy bricked(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected);

    panel().seeDevices(paths({u"00ff"_s}));
    QCOMPARE(bricked.count(), 1);
    QVERIFY(panel().isUpgrading());
    QVERIFY(panel().isRecovering());
    QCOMPARE(panel().plan(), UpgradePlan::Both);
    // The recovery runs inside the signal: its lines stand between the two of the scan.
    const qsizetype flags = lines().indexOf(kRecoveryFlags.arg(u"false"_s, u"false"_s));
    const qsizetype recovery = lines().indexOf(u"[AutoRecover] start auto recover upgrade flow."_s);
    QVERIFY(flags > 0 && flags < recovery);
    QVERIFY(recovery < lines().indexOf(kRecoveryStarted));
}

void ScanDecisionsTest::bootLoaderStartsNothing_data()
{
    QTest::addColumn<bool>("isUpgrading");
    QTest::addColumn<bool>("isRecovering");
    QTest::newRow("while an upgrade runs") << true << false;
    QTest::newRow("while a recovery is armed") << false << true;
    QTest::newRow("while a recovery runs") << true << true;
}

void ScanDecisionsTest::bootLoaderStartsNothing()
{
    QFETCH(bool, isUpgrading);
    QFETCH(bool, isRecovering);
    panel().pretendUpgrading(isUpgrading);
    panel().pretendRecovering(isRecovering);
    QSignalSpy bricked(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected);
    const QStringList before = panel().state();

    panel().seeDevices(paths({u"00ff"_s}));
    QCOMPARE(bricked.count(), 0);
    QCOMPARE(lines().constLast(), kRecoveryFlags.arg(word(isUpgrading), word(isRecovering)));
    QCOMPARE(changedState(before, panel().state()), QStringList(u"lastDetectedPcPid=255"_s));
}

void ScanDecisionsTest::recoveryFlagsStandWhenTheSignalComes()
{
    dropRecovery();
    QStringList atTheSignal;
    connect(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected, this,
            [&] { atTheSignal = panel().state(); });

    panel().seeDevices(paths({u"00ff"_s}));
    QVERIFY(atTheSignal.contains(u"m_isUpgrading=true"_s));
    QVERIFY(atTheSignal.contains(u"m_autoRecoverRunning=true"_s));
    QVERIFY(atTheSignal.contains(u"lastDetectedPcPid=255"_s));
    QCOMPARE(lines().constLast(), kRecoveryStarted);
}

void ScanDecisionsTest::otgPhase_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("isPcDone");
    QTest::addColumn<QStringList>("productIds");
    QTest::addColumn<int>("announcements");
    QTest::addColumn<QString>("lastLine");
    QTest::newRow("OtgOnly, OTG chip present")
        << DeviceModel::R2 << UpgradePlan::OtgOnly << false << QStringList(u"001f"_s) << 1 << kOtgTrigger;
    QTest::newRow("OtgOnly, OTG boot loader present")
        << DeviceModel::R2 << UpgradePlan::OtgOnly << false << QStringList(u"0065"_s) << 1 << kOtgTrigger;
    QTest::newRow("OtgOnly, R1") << DeviceModel::R1 << UpgradePlan::OtgOnly << false << QStringList(u"0012"_s)
                                 << 1 << kOtgTrigger;
    QTest::newRow("OtgOnly, nothing present")
        << DeviceModel::R2 << UpgradePlan::OtgOnly << false << QStringList() << 0 << kOtgMissing;
    QTest::newRow("OtgOnly, the other model's OTG chip")
        << DeviceModel::R2 << UpgradePlan::OtgOnly << false << QStringList(u"0012"_s) << 0 << kOtgMissing;
    QTest::newRow("OtgOnly, PC chip only")
        << DeviceModel::R2 << UpgradePlan::OtgOnly << false << QStringList(u"000e"_s) << 0 << kOtgMissing;
    QTest::newRow("Both with its PC half done, OTG chip present")
        << DeviceModel::R2 << UpgradePlan::Both << true << QStringList(u"001f"_s) << 1 << kOtgTrigger;
    QTest::newRow("Both with its PC half done, both chips present")
        << DeviceModel::R2 << UpgradePlan::Both << true << QStringList{u"000e"_s, u"001f"_s} << 1
        << kOtgTrigger;
    QTest::newRow("Both with its PC half done, nothing present")
        << DeviceModel::R2 << UpgradePlan::Both << true << QStringList() << 0 << kOtgMissing;
    QTest::newRow("both of the OTG chip's identities are one announcement")
        << DeviceModel::R2 << UpgradePlan::Both << true << QStringList{u"001f"_s, u"0065"_s} << 1
        << kOtgTrigger;
}

void ScanDecisionsTest::otgPhase()
{
    QFETCH(DeviceModel, model);
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, isPcDone);
    QFETCH(QStringList, productIds);
    panel().pretendModel(model);
    panel().pretendUpgrading(true);
    panel().pretendPlan(plan);
    panel().pretendPcDone(isPcDone);
    QStringList atTheSignal;
    int announcements = 0;
    connect(&panel(), &FirmwareUpgradeWidget::r2otgConnected, this, [&] {
        ++announcements;
        atTheSignal = lines();
    });

    panel().seeDevices(paths(productIds));
    QTEST(announcements, "announcements");
    QTEST(lines().constLast(), "lastLine");
    if (announcements)
        QCOMPARE(atTheSignal.constLast(), kOtgTrigger);
    QVERIFY(stage().log.startingWith(u"[ConnectingR2] foundR2"_s).isEmpty());
}

void ScanDecisionsTest::otgPhaseOpensAndRecoversNothing()
{
    const QString device = PanelStage::bus().plug(0x000E);
    panel().pretendUpgrading(true);
    panel().pretendPlan(UpgradePlan::OtgOnly);
    QSignalSpy bricked(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected);

    panel().seeDevices({device, path(u"00ff"_s)});
    QCOMPARE(stage().log.startingWith(u"hid"_s), QStringList());
    QCOMPARE(bricked.count(), 0);
    QCOMPARE(panel().lastSeenId(Chip::Pc), 255);
}

void ScanDecisionsTest::otgBeforeItsPhase_data()
{
    QTest::addColumn<bool>("isUpgrading");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("isPcDone");
    QTest::addColumn<bool>("isTooEarly");
    QTest::newRow("PC half of Both") << true << UpgradePlan::Both << false << true;
    QTest::newRow("PcOnly") << true << UpgradePlan::PcOnly << false << true;
    QTest::newRow("PcOnly is no OTG run whatever the flag says")
        << true << UpgradePlan::PcOnly << true << true;
    QTest::newRow("None") << true << UpgradePlan::None << false << true;
    QTest::newRow("a plan that does not exist") << true << UpgradePlan(7) << true << true;
    QTest::newRow("OtgOnly before the click") << false << UpgradePlan::OtgOnly << false << false;
    QTest::newRow("Both, done, idle") << false << UpgradePlan::Both << true << false;
}

void ScanDecisionsTest::otgBeforeItsPhase()
{
    QFETCH(bool, isUpgrading);
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, isPcDone);
    QFETCH(bool, isTooEarly);
    panel().pretendUpgrading(isUpgrading);
    panel().pretendPlan(plan);
    panel().pretendPcDone(isPcDone);
    QSignalSpy announced(&panel(), &FirmwareUpgradeWidget::r2otgConnected);

    for (const QString &productId : {u"001f"_s, u"0065"_s}) {
        panel().seeDevices(paths({productId}));
        QCOMPARE(lines().constLast(),
                 isTooEarly ? kOtgTooEarly : foundLine(productId == u"001f" ? u"O"_s : u"o"_s));
    }
    QCOMPARE(announced.count(), 0);
}

QUILLON_TEST(ScanDecisionsTest)
#include "tst_scan_decisions.moc"
