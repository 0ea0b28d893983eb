// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PhaseStage.h"
#include "tests/panel/ScreenParts.h"
#include "tests/support/TestProgram.h"

#include <QLabel>
#include <QMovie>
#include <QSignalSpy>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

const QString kImmediateStart
    = QStringLiteral("Detect the OTG connected to R2, start upgrade otg firmware...");
const QString kOtgReady = QStringLiteral("[OTG] OTG设备已就绪，延迟后启动OTG升级");

/// What the waiting screen of one port tells the user; for the PC port the texts are those that stand there.
struct Waiting {
    QString movie;
    QString detecting;
    QString hint;
};

const QString kFormer = QStringLiteral("what stood there");

Waiting pcWaiting(DeviceModel model)
{
    return {model == DeviceModel::R1 ? u":/new/prefix1/image/pc.gif"_s : u":/new/prefix1/image/dc5v_pc.gif"_s,
            {},
            {}};
}

Waiting otgWaiting(DeviceModel model)
{
    if (model == DeviceModel::R1) {
        return {u":/new/prefix1/image/pc_otg.gif"_s, u"正在检测OTG接入..."_s,
                u"请使用配件附带的USB线，接入并保持USB-C和OTG口\n与电脑的连接。"_s};
    }
    return {u":/new/prefix1/image/dc5v_otg.gif"_s, u"正在检测OTG接入..."_s,
            u"请使用配件附带USB线接入图示DC-5V和OTG口,\n继续完成升级。"_s};
}

} // namespace

Q_DECLARE_METATYPE(Waiting)

class PhasesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void logsThePhase_data();
    void logsThePhase();
    void noPlanChangesNothing_data();
    void noPlanChangesNothing();
    void showsTheWaitingScreen_data();
    void showsTheWaitingScreen();
    void waitingScreenChangesInOrder_data();
    void waitingScreenChangesInOrder();
    void waitingScreenFollowsTheLanguage();
    void waitingScreenReplacesTheAnimation();
    void pcOnlyStartsAtZero();
    void waitsForTheOtgInterface_data();
    void waitsForTheOtgInterface();
    void bothForgetsFormerReceivers();
    void otgOnlyKeepsFormerReceivers();
    void otgOnlyStartsAtOnceWhenTheInterfaceIsThere();
    void otgOnlyStartsOnlyAfterTheScanHasReturned();
    void otgOnlyStartsWhenTheInterfaceComes();
    void otgOnlyShowsCardAndNotesWhenItStarts();
    void otgOnlyStartsWhateverTheFlagsSay();
    void choosesTheOtgProductId_data();
    void choosesTheOtgProductId();
    void startsOncePerPhase_data();
    void startsOncePerPhase();
    void bothDoesNotStartOtgBeforePcIsDone();
    void retryOfTheOtgHalfFlashesOtgOnly();
};

void PhasesTest::logsThePhase_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("line");
    QTest::newRow("None") << UpgradePlan::None << u"[Upgrade] 当前无需升级"_s;
    QTest::newRow("PcOnly") << UpgradePlan::PcOnly << u"[Upgrade] 开始执行 PC 固件升级流程"_s;
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly << u"[Upgrade] 开始执行 OTG 固件升级流程"_s;
    QTest::newRow("Both") << UpgradePlan::Both << u"[Upgrade] 先升 PC 再升 OTG"_s;
}

void PhasesTest::logsThePhase()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, line);
    PhaseStage stage(plan);
    stage.finishDownloads();
    const QStringList lines = stage.log.lines();
    const auto last = lines.indexOf(u"all firmware has downlaod well, start upgrade..."_s);
    QVERIFY(last >= 0);
    QCOMPARE(lines.value(last + 1), line);
    QCOMPARE(stage.log.startingWith(u"[Upgrade]"_s), QStringList{line});
}

void PhasesTest::noPlanChangesNothing_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::newRow("None") << UpgradePlan::None;
    QTest::newRow("no plan of ours") << UpgradePlan(4);
}

void PhasesTest::noPlanChangesNothing()
{
    QFETCH(UpgradePlan, plan);
    PhaseStage stage(plan);
    OpenPanel &panel = *stage.panel;
    panel.pretendImage(Chip::Otg, true);
    const QStringList screen = Screen::everything(panel);
    const QStringList state = panel.state();
    stage.finishDownloads();
    QCOMPARE(Screen::everything(panel), screen);
    QCOMPARE(panel.state(), state);
    QCOMPARE(stage.receiversOfOtgConnected(), 0);
    QCOMPARE(stage.log.startingWith(u"[ConnectingR2]"_s), QStringList());
}

void PhasesTest::showsTheWaitingScreen_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<Waiting>("waiting");
    for (const DeviceModel model : {DeviceModel::R1, DeviceModel::R2, DeviceModel(6)}) {
        const char *name = model == DeviceModel::R1 ? "R1"
            : model == DeviceModel::R2              ? "R2"
                                                    : "any other model";
        QTest::addRow("PcOnly, %s", name) << UpgradePlan::PcOnly << model << pcWaiting(model);
        QTest::addRow("OtgOnly, %s", name) << UpgradePlan::OtgOnly << model << otgWaiting(model);
        QTest::addRow("Both, %s", name) << UpgradePlan::Both << model << pcWaiting(model);
    }
}

void PhasesTest::showsTheWaitingScreen()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(DeviceModel, model);
    QFETCH(Waiting, waiting);
    PhaseStage stage(plan, model);
    OpenPanel &panel = *stage.panel;
    panel.pretendWaitingForCable(false);
    panel.detectingText()->setText(kFormer);
    panel.cableHint()->setText(kFormer);
    panel.bar()->setBackgroundColor(Qt::red);
    panel.waitingText()->setText(kFormer);
    stage.finishDownloads();
    QCOMPARE(panel.movie()->fileName(), waiting.movie);
    QCOMPARE(panel.movie()->state(), QMovie::Running);
    QCOMPARE(panel.movie()->parent(), panel.animation());
    QCOMPARE(panel.animation()->movie(), panel.movie());
    if (!waiting.hint.isEmpty()) {
        QCOMPARE(panel.detectingText()->text(), waiting.detecting);
        QCOMPARE(panel.cableHint()->text(), waiting.hint);
    }
    QCOMPARE(panel.barBackground(), QColor(48, 49, 60, 255));
    QVERIFY(panel.isWaitingForCable());
    QCOMPARE(panel.waitingText()->text(), u"待USB线接入图示口..."_s);
    QCOMPARE(panel.waitingText()->geometry(), QRect(140, 13, 159, 21));
    QCOMPARE(panel.waitingIcon()->geometry(), QRect(108, 12, 24, 24));
}

void PhasesTest::waitingScreenChangesInOrder_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::newRow("PcOnly") << UpgradePlan::PcOnly;
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly;
    QTest::newRow("Both") << UpgradePlan::Both;
}

void PhasesTest::waitingScreenChangesInOrder()
{
    QFETCH(UpgradePlan, plan);
    PhaseStage stage(plan);
    Screen::showOnly(*stage.panel,
                     {u"m_progressBar"_s, u"verCompLb"_s, u"m_notesEdit"_s, u"m_notesIconLb"_s,
                      u"m_notesTitleLb"_s, u"m_notesLineLb"_s, u"m_rocketLb"_s, u"m_upgradeTextLb"_s,
                      u"m_failTextLb"_s});
    const VisibilityRecorder recorder(*stage.panel);
    stage.finishDownloads();
    QCOMPARE(
        recorder.changes,
        (QStringList{u"-verCompLb"_s, u"-m_notesEdit"_s, u"-m_notesIconLb"_s, u"-m_notesTitleLb"_s,
                     u"-m_notesLineLb"_s, u"+tipMoiveLb"_s, u"+m_detectingUsbLb"_s, u"+m_connectHintLb"_s,
                     u"-m_rocketLb"_s, u"-m_upgradeTextLb"_s, u"+m_waitingIconLb"_s, u"+m_upgradingLb"_s}));
}

void PhasesTest::waitingScreenFollowsTheLanguage()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    QuillonFirmwareUpgrade::setLanguage(Language::English);
    stage.finishDownloads();
    QCOMPARE(stage.panel->detectingText()->text(), u"Detecting OTG connection..."_s);
    QCOMPARE(
        stage.panel->cableHint()->text(),
        u"To continue and complete the update, use the provided\nUSB cables to connect the DC-5V and OTG ports as\nshown."_s);
    QCOMPARE(stage.panel->waitingText()->text(), u"Connect to the indicated USB ports. "_s);
    QCOMPARE(stage.panel->waitingText()->geometry(), QRect(83, 13, 290, 21));
}

void PhasesTest::waitingScreenReplacesTheAnimation()
{
    PhaseStage stage(UpgradePlan::PcOnly);
    const QMovie *former = stage.panel->movie();
    stage.finishDownloads();
    QVERIFY(stage.panel->movie() != former);
}

void PhasesTest::pcOnlyStartsAtZero()
{
    PhaseStage stage(UpgradePlan::PcOnly);
    stage.panel->bar()->setValue(42);
    stage.finishDownloads();
    QCOMPARE(stage.panel->bar()->value(), 0);
}

void PhasesTest::waitsForTheOtgInterface_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<int>("receivers");
    QTest::addColumn<int>("scans");
    QTest::newRow("PcOnly") << UpgradePlan::PcOnly << 0 << 0;
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly << 1 << 1;
    QTest::newRow("Both") << UpgradePlan::Both << 1 << 1;
}

void PhasesTest::waitsForTheOtgInterface()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(int, receivers);
    QFETCH(int, scans);
    PhaseStage stage(plan);
    stage.log.clear();
    stage.finishDownloads();
    QCOMPARE(stage.receiversOfOtgConnected(), receivers);
    QCOMPARE(stage.log.startingWith(u"[ConnectingR2] START"_s).size(), scans);
    QCOMPARE(stage.toolStarts(), QStringList());
}

void PhasesTest::bothForgetsFormerReceivers()
{
    PhaseStage stage(UpgradePlan::Both);
    const QSignalSpy host(stage.panel.get(), &FirmwareUpgradeWidget::r2otgConnected);
    stage.finishDownloads();
    Q_EMIT stage.panel->r2otgConnected();
    QCOMPARE(host.size(), 0);
}

void PhasesTest::otgOnlyKeepsFormerReceivers()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    const QSignalSpy host(stage.panel.get(), &FirmwareUpgradeWidget::r2otgConnected);
    stage.finishDownloads();
    Q_EMIT stage.panel->r2otgConnected();
    QCOMPARE(host.size(), 1);
    QTRY_COMPARE(stage.log.count(kImmediateStart), 1);
    Q_EMIT stage.panel->r2otgConnected();
    QCOMPARE(host.size(), 1);
}

void PhasesTest::otgOnlyStartsAtOnceWhenTheInterfaceIsThere()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    PanelStage::bus().plug(0x001F);
    QTRY_COMPARE(stage.panel->lastSeenId(Chip::Otg), 0x1F);
    stage.panel->pretendLastSeenId(Chip::Otg, 0);
    stage.finishDownloads();
    QTRY_COMPARE(stage.toolStarts(), QStringList{ToolStarts::kR2OtgNormal});
    const QStringList lines = stage.log.lines();
    QVERIFY(lines.lastIndexOf(u"OTG already present, trigger OTG upgrade directly"_s)
            < lines.indexOf(kImmediateStart));
    QCOMPARE(stage.receiversOfOtgConnected(), 0);
}

void PhasesTest::otgOnlyStartsOnlyAfterTheScanHasReturned()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    stage.finishDownloads();
    stage.panel->seeDevices({ScriptedBus::pathFor(0x001F)}, {0x001F});
    QVERIFY(!stage.log.contains(kImmediateStart));
    QTRY_VERIFY(stage.log.contains(kImmediateStart));
}

void PhasesTest::otgOnlyStartsWhenTheInterfaceComes()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    stage.finishDownloads();
    QVERIFY(stage.log.contains(u"OTG ready phase, but OTG device not found yet"_s));
    PanelStage::bus().plug(0x0065);
    QTRY_COMPARE(stage.toolStarts(), QStringList{ToolStarts::kR2OtgBootLoader});
}

void PhasesTest::otgOnlyShowsCardAndNotesWhenItStarts()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    OpenPanel &panel = *stage.panel;
    stage.finishDownloads();
    const VisibilityRecorder recorder(panel);
    Q_EMIT panel.r2otgConnected();
    QTRY_VERIFY(!stage.toolStarts().isEmpty());
    QCOMPARE(panel.movie()->state(), QMovie::NotRunning);
    QCOMPARE(recorder.changes, ScreenParts::kHintToCard);
}

void PhasesTest::otgOnlyStartsWhateverTheFlagsSay()
{
    PhaseStage stage(UpgradePlan::OtgOnly);
    stage.finishDownloads();
    stage.panel->pretendUpgrading(false);
    stage.panel->pretendPlan(UpgradePlan::None);
    Q_EMIT stage.panel->r2otgConnected();
    QTRY_COMPARE(stage.toolStarts().size(), 1);
}

void PhasesTest::choosesTheOtgProductId_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("seen");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<QString>("start");
    QTest::newRow("R1, none seen") << DeviceModel::R1 << 0 << false << ToolStarts::kR1Otg;
    QTest::newRow("R2, none seen") << DeviceModel::R2 << 0 << false << ToolStarts::kR2OtgNormal;
    QTest::newRow("R2, none seen, recovering") << DeviceModel::R2 << 0 << true << ToolStarts::kR2OtgNormal;
    QTest::newRow("R2, boot loader seen") << DeviceModel::R2 << 0x65 << false << ToolStarts::kR2OtgBootLoader;
    QTest::newRow("R2, whatever was seen") << DeviceModel::R2 << 0x12 << false << ToolStarts::kR1Otg;
}

void PhasesTest::choosesTheOtgProductId()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, seen);
    QFETCH(bool, recovering);
    QFETCH(QString, start);
    PhaseStage stage(UpgradePlan::OtgOnly, model);
    stage.finishDownloads();
    stage.panel->pretendLastSeenId(Chip::Otg, seen);
    stage.panel->pretendRecovering(recovering);
    Q_EMIT stage.panel->r2otgConnected();
    QTRY_COMPARE(stage.toolStarts(), QStringList{start});
}

void PhasesTest::startsOncePerPhase_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("line");
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly << kImmediateStart;
    QTest::newRow("Both") << UpgradePlan::Both << kOtgReady;
}

/// Discovery may see the interface several times before the event loop turns.
void PhasesTest::startsOncePerPhase()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(QString, line);
    PhaseStage stage(plan);
    stage.finishDownloads();
    stage.panel->pretendPcDone(true);
    const QStringList interface {
        ScriptedBus::pathFor(0x001F)
    };
    stage.panel->seeDevices(interface, {0x001F});
    stage.panel->seeDevices(interface, {0x001F});
    Q_EMIT stage.panel->r2otgConnected();
    QTRY_VERIFY(stage.log.contains(line));
    stage.panel->seeDevices(interface, {0x001F});
    QCoreApplication::processEvents();
    QCOMPARE(stage.log.count(line), 1);
    QCOMPARE(stage.toolStarts().size(), plan == UpgradePlan::OtgOnly ? 1 : 0);
}

void PhasesTest::bothDoesNotStartOtgBeforePcIsDone()
{
    PhaseStage stage(UpgradePlan::Both);
    PanelStage::bus().plug(0x001F);
    stage.finishDownloads();
    QTRY_COMPARE(stage.panel->lastSeenId(Chip::Otg), 0x1F);
    QVERIFY(stage.log.contains(u"find r2 otg device, but not ready for OTG upgrade yet"_s));
    QCoreApplication::processEvents();
    QVERIFY(!stage.log.contains(kOtgReady));
    QCOMPARE(stage.receiversOfOtgConnected(), 1);
}

void PhasesTest::retryOfTheOtgHalfFlashesOtgOnly()
{
    PhaseStage stage(UpgradePlan::Both);
    OpenPanel &panel = *stage.panel;
    panel.pretendPcDone(true);
    panel.fail();
    QCOMPARE(panel.plan(), UpgradePlan::OtgOnly);
    PanelStage::bus().plug(0x001F);
    stage.click();
    QTRY_COMPARE(stage.toolStarts(), QStringList{ToolStarts::kR2OtgNormal});
    QCOMPARE(stage.server.paths(), (QStringList{ServerPaths::kR2PcImage, ServerPaths::kR2OtgImage}));
    QCOMPARE(contentOf(panel.imagePath(Chip::Pc)), QByteArray(kPcImage));
    QCOMPARE(contentOf(panel.imagePath(Chip::Otg)), QByteArray(kOtgImage));
    QCOMPARE(panel.plan(), UpgradePlan::OtgOnly);
}

QUILLON_TEST(PhasesTest)
#include "tst_phases.moc"
