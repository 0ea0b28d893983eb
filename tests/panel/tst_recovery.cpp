#include "tests/panel/ReadyToUpgrade.h"
#include "tests/support/LogHook.h"
#include "tests/support/PanelState.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QTextEdit>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Server = ScriptedHttpServer;

const QString kStarted = QStringLiteral("[AutoRecover] start auto recover upgrade flow.");
constexpr char kRetry[]
    = "QLabel{border:0px; color:rgba(47,212,179,1);font-family:\"%1\";font-size:16px; font-weight:700; "
      "letter-spacing:0px; text-align:center;}";

/// A panel that knows nothing yet. The PC image never arrives, so that a run stays at its first download.
struct Bricked : ReadyToUpgrade {
    explicit Bricked(DeviceModel model = DeviceModel::R2)
        : ReadyToUpgrade(model)
    {
        server.answer(model == DeviceModel::R1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage,
                      Server::silence());
        panel->m_remotePcVersion.clear();
        panel->m_remoteOtgVersion.clear();
    }

    /// As discovery does it when it sees a boot loader.
    void recover() const
    {
        panel->m_isUpgrading = panel->m_autoRecoverRunning = true;
        panel->startAutoRecoverUpgrade();
    }
};

} // namespace

class TestRecovery : public QObject {
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

void TestRecovery::showsThePanelFirst()
{
    const Bricked stage;
    stage.panel->hide();
    bool visible = false;
    UpgradePlan planThen = UpgradePlan::Both;
    {
        const LogHook hook(kStarted, [&](const QString &) {
            visible = stage.panel->isVisible();
            planThen = stage.panel->m_upgradePlan;
        });
        stage.recover();
    }
    QVERIFY(visible);
    QCOMPARE(planThen, UpgradePlan::None);
    QCOMPARE(stage.log.count(kStarted), 1);
    QTRY_VERIFY(stage.panel->isActiveWindow());
}

void TestRecovery::plansBothWhateverTheVersionsSay_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("device");
    QTest::newRow("nothing known") << UpgradePlan::None << QString();
    QTest::newRow("up to date") << UpgradePlan::None << u"9.9.9"_s;
    QTest::newRow("PC planned") << UpgradePlan::PcOnly << u"1.2.0"_s;
    QTest::newRow("OTG planned") << UpgradePlan::OtgOnly << u"1.2.0"_s;
}

void TestRecovery::plansBothWhateverTheVersionsSay()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, device);
    const Bricked stage;
    stage.panel->m_upgradePlan = plan;
    stage.panel->m_devicePcVersion = stage.panel->m_deviceOtgVersion = device;
    stage.recover();
    QCOMPARE(stage.panel->m_upgradePlan, UpgradePlan::Both);
}

void TestRecovery::asksForWhatItDoesNotKnow_data()
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

void TestRecovery::asksForWhatItDoesNotKnow()
{
    QFETCH(DeviceModel, model);
    QFETCH(QString, pc);
    QFETCH(QString, otg);
    QFETCH(QStringList, asked);
    const Bricked stage(model);
    stage.panel->m_remotePcVersion = pc;
    stage.panel->m_remoteOtgVersion = otg;
    stage.recover();
    const QString image = model == DeviceModel::R1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage;
    QTRY_COMPARE(stage.server.paths(), asked + QStringList{image});
    QCOMPARE(stage.panel->m_remotePcVersion, u"1.2.3"_s);
    QCOMPARE(stage.panel->m_remoteOtgVersion, u"1.0.4"_s);
}

void TestRecovery::logsThePcVersion_data()
{
    QTest::addColumn<QString>("known");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("unknown") << QString()
                             << QStringList{kStarted,
                                            u"[AutoRecover] fetch remote PC firmware version:1.2.3"_s};
    QTest::newRow("known") << u"1.2.3"_s << QStringList{kStarted};
}

void TestRecovery::logsThePcVersion()
{
    QFETCH(QString, known);
    QFETCH(QStringList, lines);
    const Bricked stage;
    stage.panel->m_remotePcVersion = known;
    stage.recover();
    QCOMPARE(stage.log.startingWith(u"[AutoRecover]"_s), lines);
}

void TestRecovery::goesOnWithoutAnAnswer()
{
    Bricked stage;
    stage.server.answer(ServerPaths::kR2PcVersion, Server::page("no", 500));
    stage.recover();
    QVERIFY(stage.log.contains(u"[AutoRecover] fetch remote PC firmware version:104"_s));
    QCOMPARE(stage.panel->m_remotePcVersion, u"104"_s);
    QTRY_COMPARE(stage.server.paths().last(), ServerPaths::kR2PcImage);
    QVERIFY(stage.panel->m_pcFirmwarePath.endsWith(u"/R2_PC104.bin"_s));
    QVERIFY(!stage.panel->m_inFailureRetry);
}

void TestRecovery::paintsTheAvailableScreenOnItsWay()
{
    Bricked stage;
    stage.server.answer(ServerPaths::kR2PcVersion, Server::version("1.2.3", "中文说明"));
    stage.panel->m_progressBar->setValue(42);
    stage.recover();
    QCOMPARE(stage.panel->m_newVerLb->text(), u"V1.2.3"_s);
    QCOMPARE(stage.panel->m_notesEdit->toPlainText(), u"中文说明"_s);
    QVERIFY(stage.panel->m_newVerLb->isVisible());
    QVERIFY(stage.panel->m_noNewFirmwareLb->isHidden());
    QCOMPARE(stage.panel->m_progressBar->value(), 0);
}

void TestRecovery::startsAtOnce()
{
    const Bricked stage;
    const FirmwareUpgradeWidget &panel = *stage.panel;
    stage.recover();
    QCOMPARE(panel.m_progressBar->m_backgroundColor, QColor(48, 49, 60, 255));
    QVERIFY(panel.m_rocketLb->isHidden());
    QVERIFY(panel.m_upgradeTextLb->isHidden());
    QVERIFY(!panel.m_progressBar->isClickable());
    QVERIFY(panel.m_isUpgrading);
    QVERIFY(panel.m_autoRecoverRunning);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
}

void TestRecovery::aDeviceThatIsTooOldIsRecovered()
{
    const Bricked stage;
    stage.panel->m_devicePcVersion = u"1.0.0"_s;
    stage.recover();
    QVERIFY(stage.panel->m_tooOldLb->isHidden());
    QCOMPARE(stage.log.startingWith(u"[VersionCheck]"_s), QStringList());
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
}

void TestRecovery::offersTheRetryAfterAFailure_data()
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

void TestRecovery::offersTheRetryAfterAFailure()
{
    QFETCH(Language, language);
    QFETCH(QString, text);
    QFETCH(QRect, place);
    QFETCH(QString, family);
    const Bricked stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    QuillonFirmwareUpgrade::setLanguage(language);
    panel.m_remotePcVersion = u"1.2.3"_s;
    panel.m_inFailureRetry = panel.m_autoRecoverRunning = true;
    panel.m_progressBar->setValue(42);
    panel.m_progressBar->setClickable(false);
    panel.m_upgradeTextLb->setGeometry(0, 0, 7, 7);
    Screen::showOnly(panel, {u"m_progressBar"_s, u"m_rocketLb"_s, u"m_upgradingLb"_s, u"m_waitingIconLb"_s});
    const VisibilityRecorder recorder(panel);
    panel.startAutoRecoverUpgrade();

    const ClickableProgressBar &bar = *panel.m_progressBar;
    QCOMPARE(bar.value(), 0);
    QCOMPARE(bar.m_backgroundColor, QColor(35, 77, 75, 255));
    QCOMPARE(bar.m_borderColor, QColor(47, 212, 179, 255));
    QCOMPARE(bar.m_borderWidth, 2.0);
    QVERIFY(bar.isClickable());
    QCOMPARE(panel.m_upgradeTextLb->text(), text);
    QCOMPARE(panel.m_upgradeTextLb->geometry(), place);
    QCOMPARE(panel.m_upgradeTextLb->styleSheet(), QString::fromLatin1(kRetry).arg(family));
    const QSet<QString> changes(recorder.changes.begin(), recorder.changes.end());
    QCOMPARE(changes,
             (QSet<QString>{u"+m_failIconLb"_s, u"+m_failTextLb"_s, u"-m_rocketLb"_s, u"-m_upgradingLb"_s,
                            u"-m_waitingIconLb"_s, u"+m_upgradeTextLb"_s}));
    QCOMPARE(panel.m_upgradePlan, UpgradePlan::Both);
}

void TestRecovery::theRetryWaitsForTheClick()
{
    Bricked stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_remotePcVersion = u"1.2.3"_s;
    panel.m_remoteOtgVersion = u"1.0.4"_s;
    panel.showUpgradeFailureUI();
    panel.startAutoRecoverUpgrade();
    QCoreApplication::processEvents();
    QCOMPARE(stage.server.paths(), QStringList());
    QVERIFY(!panel.m_isUpgrading);
    stage.click();
    QTRY_COMPARE(stage.server.paths(), QStringList{ServerPaths::kR2PcImage});
    QVERIFY(panel.m_isUpgrading);
}

void TestRecovery::aHostMayStartIt()
{
    const Bricked stage;
    stage.panel->startAutoRecoverUpgrade();
    QVERIFY(stage.panel->m_isUpgrading);
    QVERIFY(!stage.panel->m_autoRecoverRunning);
    QCOMPARE(stage.panel->m_upgradePlan, UpgradePlan::Both);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
}

void TestRecovery::discoveryStartsIt_data()
{
    QTest::addColumn<DeviceModel>("before");
    QTest::addColumn<int>("productId");
    QTest::addColumn<DeviceModel>("after");
    QTest::newRow("R2 on an R2 panel") << DeviceModel::R2 << 0xFF << DeviceModel::R2;
    QTest::newRow("R1 on an R1 panel") << DeviceModel::R1 << 0x10 << DeviceModel::R1;
    QTest::newRow("R1 on an R2 panel") << DeviceModel::R2 << 0x10 << DeviceModel::R1;
    QTest::newRow("R2 on an R1 panel") << DeviceModel::R1 << 0xFF << DeviceModel::R2;
}

void TestRecovery::discoveryStartsIt()
{
    QFETCH(DeviceModel, before);
    QFETCH(int, productId);
    QFETCH(DeviceModel, after);
    const Bricked stage(after);
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_deviceModel = before;
    panel.hide();
    PanelStage::bus().plug(productId);
    const QString triggered = u"find DFU PID and trigger auto recover."_s;
    QTRY_VERIFY(stage.log.contains(triggered));
    const QStringList lines = stage.log.lines();
    QVERIFY(lines.indexOf(kStarted) >= 0);
    QVERIFY2(lines.indexOf(kStarted) < lines.indexOf(triggered), "the recovery runs inside the signal");
    QCOMPARE(panel.m_deviceModel, after);
    QVERIFY(panel.isVisible());
    QVERIFY(panel.m_isUpgrading && panel.m_autoRecoverRunning);
    QCOMPARE(panel.lastDetectedPcPid, productId);
    QTRY_COMPARE(stage.server.paths().last(),
                 after == DeviceModel::R1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage);
}

void TestRecovery::discoveryLeavesARunAlone_data()
{
    QTest::addColumn<bool>("upgrading");
    QTest::addColumn<bool>("recovering");
    QTest::newRow("an upgrade runs") << true << false;
    QTest::newRow("a recovery is armed") << false << true;
    QTest::newRow("a recovery runs") << true << true;
}

void TestRecovery::discoveryLeavesARunAlone()
{
    QFETCH(bool, upgrading);
    QFETCH(bool, recovering);
    const Bricked stage;
    stage.panel->m_isUpgrading = upgrading;
    stage.panel->m_autoRecoverRunning = recovering;
    PanelStage::bus().plug(0xFF);
    QTRY_COMPARE(stage.panel->lastDetectedPcPid, 0xFF);
    QCoreApplication::processEvents();
    QVERIFY(!stage.log.contains(kStarted));
    QCOMPARE(stage.server.paths(), QStringList());
}

void TestRecovery::doesNotStartAgainAfterAFailure()
{
    Bricked stage;
    PanelStage::bus().plug(0xFF);
    QTRY_COMPARE(stage.log.count(kStarted), 1);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
    stage.panel->showUpgradeFailureUI();
    stage.log.clear();
    PanelStage::bus().unplugAll();
    QTRY_VERIFY(!stage.log.startingWith(u"[ConnectingR2] START"_s).isEmpty());
    stage.log.clear();
    PanelStage::bus().plug(0xFF, 1);
    QTRY_VERIFY(!stage.log.startingWith(u"find DFU device"_s).isEmpty());
    QCoreApplication::processEvents();
    QVERIFY(!stage.log.contains(kStarted));
    QVERIFY(stage.panel->m_inFailureRetry);
}

void TestRecovery::startsAgainAfterTheClick()
{
    Bricked stage;
    FirmwareUpgradeWidget &panel = *stage.panel;
    panel.m_remotePcVersion = u"1.2.3"_s;
    panel.m_remoteOtgVersion = u"1.0.4"_s;
    PanelStage::bus().plug(0xFF);
    QTRY_VERIFY(stage.server.paths().contains(ServerPaths::kR2PcImage));
    panel.showUpgradeFailureUI();
    stage.click();
    QVERIFY(!panel.m_inFailureRetry);
    QVERIFY(!panel.m_autoRecoverRunning);
    QVERIFY(panel.m_isUpgrading);
    QCOMPARE(panel.m_upgradePlan, UpgradePlan::Both);
    QTRY_COMPARE(stage.server.paths().count(ServerPaths::kR2PcImage), 2);
}

void TestRecovery::endsWithThePanel_data()
{
    QTest::addColumn<int>("queries");
    QTest::newRow("while it asks for the version") << 1;
    QTest::newRow("while it fetches the notes") << 2;
    QTest::newRow("while it asks again for the download") << 3;
    QTest::newRow("while it asks for the OTG version") << 4;
}

void TestRecovery::endsWithThePanel()
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
    FirmwareUpgradeWidget *panel = stage.panel.get();
    panel->m_isUpgrading = panel->m_autoRecoverRunning = true;
    panel->startAutoRecoverUpgrade();
    QVERIFY(!stage.panel);
    QCOMPARE(stage.server.paths().size(), queries);
}

QUILLON_TEST(TestRecovery)
#include "tst_recovery.moc"
