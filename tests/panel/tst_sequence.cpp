// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/ReadyToUpgrade.h"
#include "tests/support/LogHook.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Server = ScriptedHttpServer;

const QString kAllDownloaded = QStringLiteral("all firmware has downlaod well, start upgrade...");

} // namespace

class SequenceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clickSaysSoFirst();
    void clickTakesTheFailureScreenAway();
    void clickResetsTheRetry();
    void clickWorksWithoutABar();
    void clickKeepsOrNarrowsThePlan_data();
    void clickKeepsOrNarrowsThePlan();
    void startPreparesTheRun();
    void fetchesTheVersions_data();
    void fetchesTheVersions();
    void isUpgradingWhileItFetches();
    void goesOnWithoutVersions();
};

void SequenceTest::clickSaysSoFirst()
{
    const ReadyToUpgrade stage;
    stage.panel->fail();
    bool clickable = false;
    bool failureShown = false;
    {
        const LogHook hook(u"clicked upgrade process"_s, [&](const QString &) {
            clickable = stage.panel->bar()->isClickable();
            failureShown = stage.panel->failureText()->isVisible();
        });
        stage.click();
    }
    QVERIFY(stage.log.contains(u"clicked upgrade process, start upgrade..."_s));
    QVERIFY(clickable);
    QVERIFY(failureShown);
}

void SequenceTest::clickTakesTheFailureScreenAway()
{
    const ReadyToUpgrade stage;
    const OpenPanel &panel = *stage.panel;
    stage.panel->fail();
    stage.click();
    QVERIFY(!panel.bar()->isClickable());
    QVERIFY(panel.failureIcon()->isHidden());
    QVERIFY(panel.failureText()->isHidden());
    QCOMPARE(panel.barBorder(), QColor(Qt::transparent));
    QCOMPARE(panel.barBorderWidth(), 0.0);
}

void SequenceTest::clickResetsTheRetry()
{
    ReadyToUpgrade stage;
    OpenPanel &panel = *stage.panel;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    panel.pretendRecovering(true);
    panel.pretendRetryOffer(true);
    panel.pretendLastSeenId(Chip::Otg, 31);
    panel.pretendLastSeenId(Chip::Pc, 14);
    panel.pretendLastPercent(42);
    panel.pretendLastPercentSince(QDateTime::currentDateTime());
    stage.click();
    QVERIFY(!panel.isRecovering());
    QVERIFY(!panel.offersRetry());
    QCOMPARE(panel.lastSeenId(Chip::Otg), 0);
    QCOMPARE(panel.lastSeenId(Chip::Pc), 14);
    QCOMPARE(panel.lastPercent(), -1);
    QVERIFY(panel.lastPercentSince().isNull());
}

void SequenceTest::clickWorksWithoutABar()
{
    const ReadyToUpgrade stage;
    ClickableProgressBar *bar = stage.panel->bar();
    stage.panel->forget(Part::Bar);
    Q_EMIT bar->clicked();
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
}

void SequenceTest::clickKeepsOrNarrowsThePlan_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<bool>("pcDone");
    QTest::addColumn<UpgradePlan>("planAfter");
    QTest::newRow("none") << UpgradePlan::None << false << UpgradePlan::None;
    QTest::newRow("PC only") << UpgradePlan::PcOnly << false << UpgradePlan::PcOnly;
    QTest::newRow("PC only, however far") << UpgradePlan::PcOnly << true << UpgradePlan::PcOnly;
    QTest::newRow("OTG only") << UpgradePlan::OtgOnly << false << UpgradePlan::OtgOnly;
    QTest::newRow("both") << UpgradePlan::Both << false << UpgradePlan::Both;
    QTest::newRow("both, the PC half done") << UpgradePlan::Both << true << UpgradePlan::OtgOnly;
}

void SequenceTest::clickKeepsOrNarrowsThePlan()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcDone);
    QFETCH(UpgradePlan, planAfter);
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    stage.panel->pretendPlan(plan);
    stage.panel->pretendPcDone(pcDone);
    stage.click();
    QCOMPARE(stage.panel->plan(), planAfter);
    QVERIFY(!stage.panel->isPcDone());
}

void SequenceTest::startPreparesTheRun()
{
    ReadyToUpgrade stage;
    OpenPanel &panel = *stage.panel;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    panel.bar()->setProgressColor(Qt::red);
    panel.pretendImage(Chip::Pc, true);
    panel.pretendImage(Chip::Otg, true);
    panel.pretendPcDone(true);
    panel.pretendDownloadRetries(2);
    panel.pretendRecovering(true);
    panel.pretendRetryOffer(true);
    panel.startRun();
    QCOMPARE(panel.bar()->progressColor(), QColor(73, 74, 86, 255));
    QVERIFY(panel.isUpgrading());
    QVERIFY(!panel.hasImage(Chip::Pc) && !panel.hasImage(Chip::Otg) && !panel.isPcDone());
    QCOMPARE(panel.downloadRetries(), 0);
    QVERIFY2(panel.isRecovering() && panel.offersRetry(), "only the click ends a recovery");
}

void SequenceTest::fetchesTheVersions_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("pc");
    QTest::addColumn<QString>("otg");
    QTest::addColumn<QStringList>("asked");
    const QStringList r1{ServerPaths::kR1PcVersion, ServerPaths::kR1OtgVersion};
    const QStringList r2{ServerPaths::kR2PcVersion, ServerPaths::kR2OtgVersion};
    QTest::newRow("both known") << DeviceModel::R2 << u"1.0.0"_s << u"1.0.0"_s << QStringList();
    QTest::newRow("the failure answer is an answer")
        << DeviceModel::R2 << u"104"_s << u"104"_s << QStringList();
    QTest::newRow("PC unknown") << DeviceModel::R2 << QString() << u"1.0.0"_s << r2;
    QTest::newRow("OTG unknown") << DeviceModel::R2 << u"1.0.0"_s << QString() << r2;
    QTest::newRow("both unknown") << DeviceModel::R2 << QString() << QString() << r2;
    QTest::newRow("both unknown, R1") << DeviceModel::R1 << QString() << QString() << r1;
}

void SequenceTest::fetchesTheVersions()
{
    QFETCH(DeviceModel, model);
    QFETCH(QString, pc);
    QFETCH(QString, otg);
    QFETCH(QStringList, asked);
    const ReadyToUpgrade stage(model);
    OpenPanel &panel = *stage.panel;
    panel.pretendServerVersion(Chip::Pc, pc);
    panel.pretendServerVersion(Chip::Otg, otg);
    panel.startRun();
    QCOMPARE(stage.server.paths().mid(0, asked.size()), asked);
    QCOMPARE(panel.serverVersion(Chip::Pc), asked.isEmpty() ? pc : u"1.2.3"_s);
    QCOMPARE(panel.serverVersion(Chip::Otg), asked.isEmpty() ? otg : u"1.0.4"_s);
    const QStringList lines{u"[Upgrade] fetch remote PC firmware version: 1.2.3"_s,
                            u"[Upgrade] fetch remote OTG firmware version: 1.0.4"_s};
    QCOMPARE(stage.log.startingWith(u"[Upgrade] fetch"_s), asked.isEmpty() ? QStringList() : lines);
}

void SequenceTest::isUpgradingWhileItFetches()
{
    ReadyToUpgrade stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendServerVersion(Chip::Pc, {});
    Server::Answer late = Server::version("1.2.3");
    late.delay = std::chrono::milliseconds(200);
    stage.server.answer(ServerPaths::kR2PcVersion, late);
    bool upgrading = false;
    QTimer::singleShot(50, this, [&] {
        upgrading = panel.isUpgrading() && stage.log.startingWith(u"[Upgrade]"_s).isEmpty();
    });
    panel.startRun();
    QVERIFY(upgrading);
}

void SequenceTest::goesOnWithoutVersions()
{
    ReadyToUpgrade stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendServerVersion(Chip::Pc, {});
    panel.pretendServerVersion(Chip::Otg, {});
    stage.server.answer(ServerPaths::kR2PcVersion, Server::page("no", 500));
    stage.server.answer(ServerPaths::kR2OtgVersion, Server::hangUp());
    panel.startRun();
    QCOMPARE(panel.serverVersion(Chip::Pc), u"104"_s);
    QCOMPARE(panel.serverVersion(Chip::Otg), u"104"_s);
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
    QCOMPARE(contentOf(stage.image(u"R2_PC104.bin"_s)), QByteArray(kPcImage));
    QCOMPARE(contentOf(stage.image(u"R2_OTG104.bin"_s)), QByteArray(kOtgImage));
}

QUILLON_TEST(SequenceTest)
#include "tst_sequence.moc"
