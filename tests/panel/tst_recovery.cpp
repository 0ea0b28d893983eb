// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/ReadyToUpgrade.h"
#include "tests/panel/ScreenParts.h"
#include "tests/support/LogHook.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QTextEdit>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Server = ScriptedHttpServer;

const QString kStarted = QStringLiteral("[AutoRecover] start auto recover upgrade flow.");

/// A panel that knows nothing yet. The PC image never arrives, so that a run stays at its first download.
struct Bricked : ReadyToUpgrade {
    explicit Bricked(DeviceModel model = DeviceModel::R2)
        : ReadyToUpgrade(model)
    {
        server.answer(model == DeviceModel::R1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage,
                      Server::silence());
        panel->pretendServerVersion(Chip::Pc, {});
        panel->pretendServerVersion(Chip::Otg, {});
    }

    /// As discovery does it when it sees a boot loader.
    void recover() const
    {
        panel->pretendUpgrading(true);
        panel->pretendRecovering(true);
        panel->startAutoRecoverUpgrade();
    }
};

} // namespace

class RecoveryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsThePanelFirst();
    void plansBothWhateverTheVersionsSay_data();
    void plansBothWhateverTheVersionsSay();
    void asksForWhatItDoesNotKnow_data();
    void asksForWhatItDoesNotKnow();
    void logsThePcVersion_data();
    void logsThePcVersion();
    void goesOnWithoutAnAnswer();
    void paintsTheAvailableScreenOnItsWay();
    void startsAtOnce();
    void aDeviceThatIsTooOldIsRecovered();
    void offersTheRetryAfterAFailure_data();
    void offersTheRetryAfterAFailure();
    void theRetryWaitsForTheClick();
    void aHostMayStartIt();
    void discoveryStartsIt_data();
    void discoveryStartsIt();
    void discoveryLeavesARunAlone_data();
    void discoveryLeavesARunAlone();
    void doesNotStartAgainAfterAFailure();
    void startsAgainAfterTheClick();
    void endsWithThePanel_data();
    void endsWithThePanel();
};

void RecoveryTest::showsThePanelFirst()
{
    const Bricked stage;
    stage.panel->hide();
    bool visible = false;
    UpgradePlan planThen = UpgradePlan::Both;
    {
        const LogHook hook(kStarted, [&](const QString &) {
            visible = stage.panel->isVisible();
            planThen = stage.panel->plan();
        });
        stage.recover();
    }
    QVERIFY(visible);
    QCOMPARE(planThen, UpgradePlan::None);
    QCOMPARE(stage.log.count(kStarted), 1);
    QTRY_VERIFY(stage.panel->isActiveWindow());
}

void RecoveryTest::plansBothWhateverTheVersionsSay_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("device");
    QTest::newRow("nothing known") << UpgradePlan::None << QString();
    QTest::newRow("up to date") << UpgradePlan::None << u"9.9.9"_s;
    QTest::newRow("PC planned") << UpgradePlan::PcOnly << u"1.2.0"_s;
    QTest::newRow("OTG planned") << UpgradePlan::OtgOnly << u"1.2.0"_s;
}

void RecoveryTest::plansBothWhateverTheVersionsSay()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, device);
    const Bricked stage;
    stage.panel->pretendPlan(plan);
    stage.panel->pretendDeviceVersion(Chip::Pc, device);
    stage.panel->pretendDeviceVersion(Chip::Otg, device);
    stage.recover();
    QCOMPARE(stage.panel->plan(), UpgradePlan::Both);
}

void RecoveryTest::asksForWhatItDoesNotKnow_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("pc");
    QTest::addColumn<QString>("otg");
    QTest::addColumn<QStringList>("asked");
    // The release notes come with a query of the PC version.
    const QString r1Pc = ServerPaths::kR1PcVersion;
    const QString r2Pc = ServerPaths::kR2PcVersion;
    const QString r2Otg = ServerPaths::kR2OtgVersion;
    QTest::newRow("nothing known") << DeviceModel::R2 << QString() << QString()
                                   << QStringList{r2Pc, r2Pc, r2Pc, r2Otg};
    QTest::newRow("nothing known, R1") << DeviceModel::R1 << QString() << QString()
                                       << QStringList{r1Pc, r1Pc, r1Pc, ServerPaths::kR1OtgVersion};
    QTest::newRow("PC known") << DeviceModel::R2 << u"1.2.3"_s << QString() << QStringList{r2Pc, r2Pc, r2Otg};
    QTest::newRow("OTG known") << DeviceModel::R2 << QString() << u"1.0.4"_s << QStringList{r2Pc, r2Pc};
    QTest::newRow("both known") << DeviceModel::R2 << u"1.2.3"_s << u"1.0.4"_s << QStringList{r2Pc};
}

void RecoveryTest::asksForWhatItDoesNotKnow()
{
    QFETCH(DeviceModel, model);
    QFETCH(QString, pc);
    QFETCH(QString, otg);
    QFETCH(QStringList, asked);
    const Bricked stage(model);
    stage.panel->pretendServerVersion(Chip::Pc, pc);
    stage.panel->pretendServerVersion(Chip::Otg, otg);
    stage.recover();
    const QString image = model == DeviceModel::R1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage;
    QTRY_COMPARE(stage.server.paths(), asked + QStringList{image});
    QCOMPARE(stage.panel->serverVersion(Chip::Pc), u"1.2.3"_s);
    QCOMPARE(stage.panel->serverVersion(Chip::Otg), u"1.0.4"_s);
}

void RecoveryTest::logsThePcVersion_data()
{
    QTest::addColumn<QString>("known");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("unknown") << QString()
                             << QStringList{kStarted,
                                            u"[AutoRecover] fetch remote PC firmware version: 1.2.3"_s};
    QTest::newRow("known") << u"1.2.3"_s << QStringList{kStarted};
}

void RecoveryTest::logsThePcVersion()
{
    QFETCH(QString, known);
    QFETCH(QStringList, lines);
    const Bricked stage;
    stage.panel->pretendServerVersion(Chip::Pc, known);
    stage.recover();
    QCOMPARE(stage.log.startingWith(u"[AutoRecover]"_s), lines);
}

void RecoveryTest::goesOnWithoutAnAnswer()
{
    Bricked stage;
    stage.server.answer(ServerPaths::kR2PcVersion, Server::page("no", 500));
    stage.recover();
    QVERIFY(stage.log.contains(u"[AutoRecover] fetch remote PC firmware version: 104"_s));
    QCOMPARE(stage.panel->serverVersion(Chip::Pc), u"104"_s);
    QTRY_COMPARE(stage.server.paths().last(), ServerPaths::kR2PcImage);
    QVERIFY(stage.panel->imagePath(Chip::Pc).endsWith(u"/R2_PC104.bin"_s));
    QVERIFY(!stage.panel->offersRetry());
}

void RecoveryTest::paintsTheAvailableScreenOnItsWay()
{
    Bricked stage;
    stage.server.answer(ServerPaths::kR2PcVersion, Server::version("1.2.3", "中文说明"));
    stage.panel->bar()->setValue(42);
    stage.recover();
    QCOMPARE(stage.panel->newVersion()->text(), u"V1.2.3"_s);
    QCOMPARE(stage.panel->notes()->toPlainText(), u"中文说明"_s);
    QVERIFY(stage.panel->newVersion()->isVisible());
    QVERIFY(stage.panel->noNewFirmware()->isHidden());
    QCOMPARE(stage.panel->bar()->value(), 0);
}

void RecoveryTest::startsAtOnce()
{
    const Bricked stage;
    const OpenPanel &panel = *stage.panel;
    stage.recover();
    QCOMPARE(panel.barBackground(), QColor(48, 49, 60, 255));
    QVERIFY(panel.rocket()->isHidden());
    QVERIFY(panel.upgradeText()->isHidden());
    QVERIFY(!panel.bar()->isClickable());
    QVERIFY(panel.isUpgrading());
    QVERIFY(panel.isRecovering());
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
}

void RecoveryTest::aDeviceThatIsTooOldIsRecovered()
{
    const Bricked stage;
    stage.panel->pretendDeviceVersion(Chip::Pc, u"1.0.0"_s);
    stage.recover();
    QVERIFY(stage.panel->tooOldText()->isHidden());
    QCOMPARE(stage.log.startingWith(u"[VersionCheck]"_s), QStringList());
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
}

void RecoveryTest::offersTheRetryAfterAFailure_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("family");
    QTest::newRow("Chinese") << Language::Chinese << u"我已拔插设备，重新升级"_s << QRect(116, 13, 176, 21)
                             << u"Microsoft YaHei"_s;
    QTest::newRow("English") << Language::English << u"I've replugged the device. Restart update."_s
                             << QRect(46, 13, 317, 21) << u"Segoe UI"_s;
}

void RecoveryTest::offersTheRetryAfterAFailure()
{
    QFETCH(Language, language);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    QFETCH(QString, family);
    const Bricked stage;
    OpenPanel &panel = *stage.panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    panel.pretendServerVersion(Chip::Pc, u"1.2.3"_s);
    panel.pretendRetryOffer(true);
    panel.pretendRecovering(true);
    panel.bar()->setValue(42);
    panel.bar()->setClickable(false);
    panel.upgradeText()->setGeometry(0, 0, 7, 7);
    Screen::showOnly(panel, {u"m_progressBar"_s, u"m_rocketLb"_s, u"m_upgradingLb"_s, u"m_waitingIconLb"_s});
    const VisibilityRecorder recorder(panel);
    panel.startAutoRecoverUpgrade();

    const ClickableProgressBar &bar = *panel.bar();
    QCOMPARE(bar.value(), 0);
    QCOMPARE(panel.barBackground(), QColor(35, 77, 75, 255));
    QCOMPARE(panel.barBorder(), QColor(47, 212, 179, 255));
    QCOMPARE(panel.barBorderWidth(), 2.0);
    QVERIFY(bar.isClickable());
    QCOMPARE(panel.upgradeText()->text(), text);
    QCOMPARE(panel.upgradeText()->geometry(), place);
    QCOMPARE(panel.upgradeText()->styleSheet(), ScreenParts::retryStyle(family));
    const QSet<QString> changes(recorder.changes.begin(), recorder.changes.end());
    QCOMPARE(changes,
             (QSet<QString>{u"+m_failIconLb"_s, u"+m_failTextLb"_s, u"-m_rocketLb"_s, u"-m_upgradingLb"_s,
                            u"-m_waitingIconLb"_s, u"+m_upgradeTextLb"_s}));
    QCOMPARE(panel.plan(), UpgradePlan::Both);
}

void RecoveryTest::theRetryWaitsForTheClick()
{
    Bricked stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendServerVersion(Chip::Pc, u"1.2.3"_s);
    panel.pretendServerVersion(Chip::Otg, u"1.0.4"_s);
    panel.fail();
    panel.startAutoRecoverUpgrade();
    QCoreApplication::processEvents();
    QCOMPARE(stage.server.paths(), QStringList());
    QVERIFY(!panel.isUpgrading());
    stage.click();
    QTRY_COMPARE(stage.server.paths(), QStringList{ServerPaths::kR2PcImage});
    QVERIFY(panel.isUpgrading());
}

void RecoveryTest::aHostMayStartIt()
{
    const Bricked stage;
    stage.panel->startAutoRecoverUpgrade();
    QVERIFY(stage.panel->isUpgrading());
    QVERIFY(!stage.panel->isRecovering());
    QCOMPARE(stage.panel->plan(), UpgradePlan::Both);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
}

void RecoveryTest::discoveryStartsIt_data()
{
    QTest::addColumn<DeviceModel>("before");
    QTest::addColumn<int>("productId");
    QTest::addColumn<DeviceModel>("after");
    QTest::newRow("R2 on an R2 panel") << DeviceModel::R2 << 0xFF << DeviceModel::R2;
    QTest::newRow("R1 on an R1 panel") << DeviceModel::R1 << 0x10 << DeviceModel::R1;
    QTest::newRow("R1 on an R2 panel") << DeviceModel::R2 << 0x10 << DeviceModel::R1;
    QTest::newRow("R2 on an R1 panel") << DeviceModel::R1 << 0xFF << DeviceModel::R2;
}

void RecoveryTest::discoveryStartsIt()
{
    QFETCH(DeviceModel, before);
    QFETCH(int, productId);
    QFETCH(DeviceModel, after);
    const Bricked stage(after);
    OpenPanel &panel = *stage.panel;
    panel.pretendModel(before);
    panel.hide();
    PanelStage::bus().plug(productId);
    const QString triggered = u"find DFU PID and trigger auto recover."_s;
    QTRY_VERIFY(stage.log.contains(triggered));
    const QStringList lines = stage.log.lines();
    QVERIFY(lines.indexOf(kStarted) >= 0);
    QVERIFY2(lines.indexOf(kStarted) < lines.indexOf(triggered), "the recovery runs inside the signal");
    QCOMPARE(panel.model(), after);
    QVERIFY(panel.isVisible());
    QVERIFY(panel.isUpgrading() && panel.isRecovering());
    QCOMPARE(panel.lastSeenId(Chip::Pc), productId);
    QTRY_COMPARE(stage.server.paths().last(),
                 after == DeviceModel::R1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage);
}

void RecoveryTest::discoveryLeavesARunAlone_data()
{
    QTest::addColumn<bool>("upgrading");
    QTest::addColumn<bool>("recovering");
    QTest::newRow("an upgrade runs") << true << false;
    QTest::newRow("a recovery is armed") << false << true;
    QTest::newRow("a recovery runs") << true << true;
}

void RecoveryTest::discoveryLeavesARunAlone()
{
    QFETCH(bool, upgrading);
    QFETCH(bool, recovering);
    const Bricked stage;
    stage.panel->pretendUpgrading(upgrading);
    stage.panel->pretendRecovering(recovering);
    PanelStage::bus().plug(0xFF);
    QTRY_COMPARE(stage.panel->lastSeenId(Chip::Pc), 0xFF);
    QCoreApplication::processEvents();
    QVERIFY(!stage.log.contains(kStarted));
    QCOMPARE(stage.server.paths(), QStringList());
}

void RecoveryTest::doesNotStartAgainAfterAFailure()
{
    Bricked stage;
    PanelStage::bus().plug(0xFF);
    QTRY_COMPARE(stage.log.count(kStarted), 1);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
    stage.panel->fail();
    stage.log.clear();
    PanelStage::bus().unplugAll();
    QTRY_VERIFY(!stage.log.startingWith(u"[ConnectingR2] START"_s).isEmpty());
    stage.log.clear();
    PanelStage::bus().plug(0xFF, 1);
    QTRY_VERIFY(!stage.log.startingWith(u"find DFU device"_s).isEmpty());
    QCoreApplication::processEvents();
    QVERIFY(!stage.log.contains(kStarted));
    QVERIFY(stage.panel->offersRetry());
}

void RecoveryTest::startsAgainAfterTheClick()
{
    Bricked stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendServerVersion(Chip::Pc, u"1.2.3"_s);
    panel.pretendServerVersion(Chip::Otg, u"1.0.4"_s);
    PanelStage::bus().plug(0xFF);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
    panel.fail();
    stage.click();
    QVERIFY(!panel.offersRetry());
    QVERIFY(!panel.isRecovering());
    QVERIFY(panel.isUpgrading());
    QCOMPARE(panel.plan(), UpgradePlan::Both);
    QTRY_COMPARE(stage.server.paths().count(ServerPaths::kR2PcImage), 2);
}

void RecoveryTest::endsWithThePanel_data()
{
    QTest::addColumn<int>("queries");
    QTest::newRow("while it asks for the version") << 1;
    QTest::newRow("while it fetches the notes") << 2;
    QTest::newRow("while it asks again for the download") << 3;
    QTest::newRow("while it asks for the OTG version") << 4;
}

void RecoveryTest::endsWithThePanel()
{
    QFETCH(int, queries);
    Bricked stage;
    for (const QString &path : {ServerPaths::kR2PcVersion, ServerPaths::kR2OtgVersion}) {
        Server::Answer late = Server::version("1.2.3");
        late.delay = std::chrono::milliseconds(150);
        stage.server.answer(path, late);
    }
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (stage.server.paths().size() == queries)
            stage.panel.reset();
    });
    timer.start(5);
    OpenPanel *panel = stage.panel.get();
    panel->pretendUpgrading(true);
    panel->pretendRecovering(true);
    panel->startAutoRecoverUpgrade();
    QVERIFY(!stage.panel);
    QCOMPARE(stage.server.paths().size(), queries);
}

QUILLON_TEST(RecoveryTest)
#include "tst_recovery.moc"
