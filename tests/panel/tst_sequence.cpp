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

class TestSequence : public QObject {
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

void TestSequence::clickSaysSoFirst()
{
    const ReadyToUpgrade stage;
    stage.panel->showUpgradeFailureUI();
    bool clickable = false;
    bool failureShown = false;
    {
        const LogHook hook(u"clicked upgrade process"_s, [&](const QString &) {
            clickable = stage.panel->m_progressBar->isClickable();
            failureShown = stage.panel->m_failTextLb->isVisible();
        });
        stage.click();
    }
    QVERIFY(stage.log.contains(u"clicked upgrade process, start upgrade..."_s));
    QVERIFY(clickable);
    QVERIFY(failureShown);
}

void TestSequence::clickTakesTheFailureScreenAway()
{
    const ReadyToUpgrade stage;
    const FirmwareUpgradeWidget &panel = *stage.panel;
    stage.panel->showUpgradeFailureUI();
    stage.click();
    QVERIFY(!panel.m_progressBar->isClickable());
    QVERIFY(panel.m_failIconLb->isHidden());
    QVERIFY(panel.m_failTextLb->isHidden());
    QCOMPARE(panel.m_progressBar->m_borderColor, QColor(Qt::transparent));
    QCOMPARE(panel.m_progressBar->m_borderWidth, 0.0);
}

void TestSequence::clickResetsTheRetry()
{
    ReadyToUpgrade stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    panel.m_autoRecoverRunning = panel.m_inFailureRetry = true;
    panel.lastDetectedOtgPid = 31;
    panel.lastDetectedPcPid = 14;
    panel.m_lastProgressPercent = 42;
    panel.m_lastProgressTime = QDateTime::currentDateTime();
    stage.click();
    QVERIFY(!panel.m_autoRecoverRunning);
    QVERIFY(!panel.m_inFailureRetry);
    QCOMPARE(panel.lastDetectedOtgPid, 0);
    QCOMPARE(panel.lastDetectedPcPid, 14);
    QCOMPARE(panel.m_lastProgressPercent, -1);
    QVERIFY(panel.m_lastProgressTime.isNull());
}

void TestSequence::clickWorksWithoutABar()
{
    const ReadyToUpgrade stage;
    ClickableProgressBar *bar = std::exchange(stage.panel->m_progressBar, nullptr);
    Q_EMIT bar->clicked();
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
}

void TestSequence::clickKeepsOrNarrowsThePlan_data()
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

void TestSequence::clickKeepsOrNarrowsThePlan()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(bool, pcDone);
    QFETCH(UpgradePlan, planAfter);
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    stage.panel->m_upgradePlan = plan;
    stage.panel->pcUpgradeCompleted = pcDone;
    stage.click();
    QCOMPARE(stage.panel->m_upgradePlan, planAfter);
    QVERIFY(!stage.panel->pcUpgradeCompleted);
}

void TestSequence::startPreparesTheRun()
{
    ReadyToUpgrade stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    panel.m_progressBar->setProgressColor(Qt::red);
    panel.m_pcFirmwareDownloaded = panel.m_otgFirmwareDownloaded = panel.pcUpgradeCompleted = true;
    panel.m_downloadRetryCount = 2;
    panel.m_autoRecoverRunning = panel.m_inFailureRetry = true;
    panel.startDownloadAndUpgrade();
    QCOMPARE(panel.m_progressBar->m_progressColor, QColor(73, 74, 86, 255));
    QVERIFY(panel.m_isUpgrading);
    QVERIFY(!panel.m_pcFirmwareDownloaded && !panel.m_otgFirmwareDownloaded && !panel.pcUpgradeCompleted);
    QCOMPARE(panel.m_downloadRetryCount, 0);
    QVERIFY2(panel.m_autoRecoverRunning && panel.m_inFailureRetry, "only the click ends a recovery");
}

void TestSequence::fetchesTheVersions_data()
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

void TestSequence::fetchesTheVersions()
{
    QFETCH(DeviceModel, model);
    QFETCH(QString, pc);
    QFETCH(QString, otg);
    QFETCH(QStringList, asked);
    const ReadyToUpgrade stage(model);
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_remotePcVersion = pc;
    panel.m_remoteOtgVersion = otg;
    panel.startDownloadAndUpgrade();
    QCOMPARE(stage.server.paths().mid(0, asked.size()), asked);
    QCOMPARE(panel.m_remotePcVersion, asked.isEmpty() ? pc : u"1.2.3"_s);
    QCOMPARE(panel.m_remoteOtgVersion, asked.isEmpty() ? otg : u"1.0.4"_s);
    const QStringList lines{u"[Upgrade] fetch remote PC firmware version:1.2.3"_s,
                            u"[Upgrade] fetch remote OTG firmware version:1.0.4"_s};
    QCOMPARE(stage.log.startingWith(u"[Upgrade] fetch"_s), asked.isEmpty() ? QStringList() : lines);
}

void TestSequence::isUpgradingWhileItFetches()
{
    ReadyToUpgrade stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_remotePcVersion.clear();
    Server::Answer late = Server::version("1.2.3");
    late.delay = std::chrono::milliseconds(200);
    stage.server.answer(ServerPaths::kR2PcVersion, late);
    bool upgrading = false;
    QTimer::singleShot(50, this, [&] {
        upgrading = panel.m_isUpgrading && stage.log.startingWith(u"[Upgrade]"_s).isEmpty();
    });
    panel.startDownloadAndUpgrade();
    QVERIFY(upgrading);
}

void TestSequence::goesOnWithoutVersions()
{
    ReadyToUpgrade stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_remotePcVersion.clear();
    panel.m_remoteOtgVersion.clear();
    stage.server.answer(ServerPaths::kR2PcVersion, Server::page("no", 500));
    stage.server.answer(ServerPaths::kR2OtgVersion, Server::hangUp());
    panel.startDownloadAndUpgrade();
    QCOMPARE(panel.m_remotePcVersion, u"104"_s);
    QCOMPARE(panel.m_remoteOtgVersion, u"104"_s);
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
    QCOMPARE(contentOf(stage.image(u"R2_PC104.bin"_s)), QByteArray(kPcImage));
    QCOMPARE(contentOf(stage.image(u"R2_OTG104.bin"_s)), QByteArray(kOtgImage));
}

QUILLON_TEST(TestSequence)
#include "tst_sequence.moc"
