// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PhaseStage.h"
#include "tests/panel/ScreenParts.h"
#include "tests/support/FakeFlashingTool.h"
#include "tests/support/LogHook.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QMovie>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int kLongEnough = 60000;
const QString kOtgReady = QStringLiteral("[OTG] OTG设备已就绪，延迟后启动OTG升级");
const QString kDelayedStart = QStringLiteral("Detect the OTG connected to R2, start upgrade OTG firmware...");
const QString kModeQuery = QStringLiteral("hid: DC_AddSendData(65: 51 c4 09 00 00 04 08 10 17 ff)");

/// Measures the time from one log line to another, each by its beginning.
class TimeBetween {
public:
    TimeBetween(const QString &from, const QString &to)
        : m_hook({}, [this, from, to](const QString &line) {
            if (line.startsWith(from))
                m_clock.start();
            else if (m_clock.isValid() && m_elapsed < 0 && line.startsWith(to))
                m_elapsed = m_clock.elapsed();
        })
    {
    }

    bool isOver() const { return m_elapsed >= 0; }

    /// A timer is never early, and late by no more than a busy machine makes it.
    bool isAbout(qint64 milliseconds) const
    {
        return m_elapsed >= milliseconds - 20 && m_elapsed < milliseconds + 1900;
    }

    QByteArray shown() const { return QByteArray::number(m_elapsed) + " ms"; }

private:
    QElapsedTimer m_clock;
    qint64 m_elapsed = -1;
    LogHook m_hook;
};

/// The PC half of a run over both chips has just ended well; the OTG interface is not there.
struct PcHalfDone : PhaseStage {
    explicit PcHalfDone(DeviceModel model)
        : PhaseStage(UpgradePlan::Both, model)
    {
        panel->pretendImage(Chip::Otg, false);
        finishDownloads();
        for (QTimer *pcAction : panel->findChildren<QTimer *>()) {
            if (pcAction->isSingleShot() && pcAction != panel->watchdog())
                pcAction->stop();
        }
        sandbox.writeProgress("success 1");
        panel->pollProgress();
        log.clear();
    }
};

} // namespace

class DelaysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pcFlashingStartsAfterItsDelay_data();
    void pcFlashingStartsAfterItsDelay();
    void pcFlashingShowsCardAndNotes();
    void pcFlashingLooksAtTheBusFirst();
    void pcFlashingStartsWhateverHappenedMeanwhile_data();
    void pcFlashingStartsWhateverHappenedMeanwhile();
    void choosesThePcProductId_data();
    void choosesThePcProductId();
    void handsTheImageToTheTool_data();
    void handsTheImageToTheTool();
    void otgFlashingStartsAfterItsDelay_data();
    void otgFlashingStartsAfterItsDelay();
    void otgFlashingStartsOnce();
    void otgFlashingChoosesTheProductId_data();
    void otgFlashingChoosesTheProductId();
    void otgFlashingIsDroppedWhenNobodyWantsIt_data();
    void otgFlashingIsDroppedWhenNobodyWantsIt();
    void readsTheVersionsBackAfterSuccess();
};

void DelaysTest::pcFlashingStartsAfterItsDelay_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("start");
    QTest::newRow("PcOnly, R2") << UpgradePlan::PcOnly << DeviceModel::R2 << ToolStarts::kR2PcNormal;
    QTest::newRow("PcOnly, R1") << UpgradePlan::PcOnly << DeviceModel::R1 << ToolStarts::kR1PcNormal;
    QTest::newRow("Both, R2") << UpgradePlan::Both << DeviceModel::R2 << ToolStarts::kR2PcNormal;
    QTest::newRow("Both, R1") << UpgradePlan::Both << DeviceModel::R1 << ToolStarts::kR1PcNormal;
}

void DelaysTest::pcFlashingStartsAfterItsDelay()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(DeviceModel, model);
    QFETCH(QString, start);
    PhaseStage stage(plan, model);
    const TimeBetween delay(u"all firmware has downlaod well"_s, u"startUpgradeWithExternalTool"_s);
    stage.finishDownloads();
    QTRY_VERIFY_WITH_TIMEOUT(delay.isOver(), kLongEnough);
    QVERIFY2(delay.isAbout(6000), delay.shown().constData());
    QCOMPARE(stage.toolStarts(), QStringList{start});
}

void DelaysTest::pcFlashingShowsCardAndNotes()
{
    PhaseStage stage(UpgradePlan::PcOnly);
    stage.finishDownloads();
    const VisibilityRecorder recorder(*stage.panel);
    QTRY_VERIFY_WITH_TIMEOUT(!stage.toolStarts().isEmpty(), kLongEnough);
    QCOMPARE(recorder.changes, ScreenParts::kHintToCard);
    QCOMPARE(stage.panel->movie()->state(), QMovie::NotRunning);
}

void DelaysTest::pcFlashingLooksAtTheBusFirst()
{
    PhaseStage stage(UpgradePlan::PcOnly);
    stage.finishDownloads();
    stage.log.clear();
    bool hintHidden = false;
    {
        const LogHook hook(u"hid? getOrvikHIDListPath()"_s,
                           [&](const QString &) { hintHidden = stage.panel->animation()->isHidden(); });
        QTRY_VERIFY_WITH_TIMEOUT(!stage.toolStarts().isEmpty(), kLongEnough);
    }
    const QStringList lines = stage.log.lines();
    const auto listed = lines.indexOf(u"hid? getOrvikHIDListPath() = 0"_s);
    QVERIFY(listed >= 0);
    QVERIFY(lines.value(listed + 1).startsWith(u"[ConnectingR2] START"_s));
    QVERIFY(hintHidden);
}

void DelaysTest::pcFlashingStartsWhateverHappenedMeanwhile_data()
{
    using Event = std::function<void(OpenPanel &)>;
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<Event>("event");
    const Event failure = [](OpenPanel &panel) { panel.fail(); };
    const Event otherPlan = [](OpenPanel &panel) { panel.pretendPlan(UpgradePlan::None); };
    QTest::newRow("PcOnly, failed") << UpgradePlan::PcOnly << failure;
    QTest::newRow("Both, failed") << UpgradePlan::Both << failure;
    QTest::newRow("PcOnly, another plan") << UpgradePlan::PcOnly << otherPlan;
}

void DelaysTest::pcFlashingStartsWhateverHappenedMeanwhile()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(std::function<void(OpenPanel &)>, event);
    PhaseStage stage(plan);
    stage.finishDownloads();
    event(*stage.panel);
    QTRY_COMPARE_WITH_TIMEOUT(stage.toolStarts().size(), 1, kLongEnough);
}

void DelaysTest::choosesThePcProductId_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("seen");
    QTest::addColumn<int>("plugged");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<QString>("start");
    QTest::newRow("R1, none seen, recovering")
        << DeviceModel::R1 << 0 << 0 << true << ToolStarts::kR1PcBootLoader;
    QTest::newRow("R2, none seen, recovering")
        << DeviceModel::R2 << 0 << 0 << true << ToolStarts::kR2PcBootLoader;
    QTest::newRow("R2, boot loader seen and gone")
        << DeviceModel::R2 << 0xFF << 0 << false << ToolStarts::kR2PcBootLoader;
    QTest::newRow("R2, normal mode seen, recovering")
        << DeviceModel::R2 << 0x0E << 0 << true << ToolStarts::kR2PcNormal;
    QTest::newRow("R2, boot loader there now")
        << DeviceModel::R2 << 0x0E << 0xFF << false << ToolStarts::kR2PcBootLoader;
    QTest::newRow("R2, whatever was seen")
        << DeviceModel::R2 << 0x10 << 0 << false << ToolStarts::kR1PcBootLoader;
}

void DelaysTest::choosesThePcProductId()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, seen);
    QFETCH(int, plugged);
    QFETCH(bool, recovering);
    QFETCH(QString, start);
    PhaseStage stage(UpgradePlan::PcOnly, model);
    stage.finishDownloads();
    stage.panel->pretendLastSeenId(Chip::Pc, seen);
    stage.panel->pretendRecovering(recovering);
    if (plugged != 0)
        PanelStage::bus().plug(plugged);
    QTRY_VERIFY_WITH_TIMEOUT(!stage.toolStarts().isEmpty(), kLongEnough);
    QCOMPARE(stage.toolStarts(), QStringList{start});
}

void DelaysTest::handsTheImageToTheTool_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<int>("plugged");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("options");
    QTest::newRow("PC image, normal mode")
        << UpgradePlan::PcOnly << 0x0E << u"pc.bin"_s << QStringList{u"--pid"_s, u"000e"_s};
    QTest::newRow("PC image, boot loader") << UpgradePlan::PcOnly << 0xFF << u"pc.bin"_s
                                           << QStringList{u"--pid"_s, u"00ff"_s, u"--already-in-dfu"_s};
    QTest::newRow("OTG image, normal mode")
        << UpgradePlan::OtgOnly << 0x1F << u"otg.bin"_s << QStringList{u"--pid"_s, u"001f"_s};
    QTest::newRow("OTG image, boot loader") << UpgradePlan::OtgOnly << 0x65 << u"otg.bin"_s
                                            << QStringList{u"--pid"_s, u"0065"_s, u"--already-in-dfu"_s};
}

void DelaysTest::handsTheImageToTheTool()
{
    QFETCH(UpgradePlan, plan);
    QFETCH(int, plugged);
    QFETCH(QString, file);
    QFETCH(QStringList, options);
    PhaseStage stage(plan);
    FakeFlashingTool tool;
    tool.obeys("write 5%\nhang");
    PanelStage::bus().plug(plugged);
    stage.finishDownloads();
    QTRY_COMPARE_WITH_TIMEOUT(FakeFlashingTool::runs().size(), 1, kLongEnough);
    QCOMPARE(FakeFlashingTool::runs().first().arguments, QStringList{stage.image(file)} + options);
}

void DelaysTest::otgFlashingStartsAfterItsDelay_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("plugged");
    QTest::addColumn<int>("delay");
    QTest::addColumn<QString>("start");
    QTest::newRow("R1") << DeviceModel::R1 << 0x12 << 8000 << ToolStarts::kR1Otg;
    QTest::newRow("R2") << DeviceModel::R2 << 0x1F << 6000 << ToolStarts::kR2OtgNormal;
    QTest::newRow("any other model") << DeviceModel(2) << 0x1F << 6000 << ToolStarts::kR2OtgNormal;
}

void DelaysTest::otgFlashingStartsAfterItsDelay()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, plugged);
    QFETCH(int, delay);
    QFETCH(QString, start);
    const PcHalfDone stage(model);
    QVERIFY(stage.panel->isPcDone());
    const TimeBetween passed(kOtgReady, kDelayedStart);
    PanelStage::bus().plug(plugged);
    QTRY_VERIFY(stage.log.contains(kOtgReady));
    QCOMPARE(stage.receiversOfOtgConnected(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(passed.isOver(), kLongEnough);
    QVERIFY2(passed.isAbout(delay), passed.shown().constData());
    QCOMPARE(stage.toolStarts(), QStringList{start});
}

void DelaysTest::otgFlashingStartsOnce()
{
    const PcHalfDone stage(DeviceModel::R2);
    Q_EMIT stage.panel->r2otgConnected();
    Q_EMIT stage.panel->r2otgConnected();
    PanelStage::bus().plug(0x1F);
    QTRY_VERIFY_WITH_TIMEOUT(stage.log.contains(kDelayedStart), kLongEnough);
    PanelStage::bus().plug(0x1F, 1);
    QTest::qWait(9000);
    QCOMPARE(stage.log.count(kOtgReady), 1);
    QCOMPARE(stage.toolStarts().size(), 1);
}

void DelaysTest::otgFlashingChoosesTheProductId_data()
{
    QTest::addColumn<int>("seen");
    QTest::addColumn<QString>("start");
    QTest::newRow("none seen") << 0 << ToolStarts::kR2OtgNormal;
    QTest::newRow("boot loader seen") << 0x65 << ToolStarts::kR2OtgBootLoader;
}

void DelaysTest::otgFlashingChoosesTheProductId()
{
    QFETCH(int, seen);
    QFETCH(QString, start);
    const PcHalfDone stage(DeviceModel::R2);
    Q_EMIT stage.panel->r2otgConnected();
    stage.panel->pretendLastSeenId(Chip::Otg, seen);
    QTRY_COMPARE_WITH_TIMEOUT(stage.toolStarts(), QStringList{start}, kLongEnough);
}

void DelaysTest::otgFlashingIsDroppedWhenNobodyWantsIt_data()
{
    QTest::addColumn<bool>("upgrading");
    QTest::addColumn<bool>("pcDone");
    QTest::newRow("the run has ended") << false << true;
    QTest::newRow("a new run has begun") << true << false;
    QTest::newRow("neither flag is set") << false << false;
}

void DelaysTest::otgFlashingIsDroppedWhenNobodyWantsIt()
{
    QFETCH(bool, upgrading);
    QFETCH(bool, pcDone);
    const PcHalfDone stage(DeviceModel::R2);
    Q_EMIT stage.panel->r2otgConnected();
    QTRY_VERIFY(stage.log.contains(kOtgReady));
    stage.panel->pretendUpgrading(upgrading);
    stage.panel->pretendPcDone(pcDone);
    QTest::qWait(8000);
    QCOMPARE(stage.toolStarts(), QStringList());
    QVERIFY(!stage.log.contains(kDelayedStart));
}

void DelaysTest::readsTheVersionsBackAfterSuccess()
{
    PhaseStage stage(UpgradePlan::PcOnly);
    OpenPanel &panel = *stage.panel;
    // The query that every new panel makes must not be taken for the one that is measured.
    QTRY_VERIFY_WITH_TIMEOUT(stage.log.contains(kModeQuery), kLongEnough);
    panel.pretendDeviceVersion(Chip::Pc, u"1.2.0"_s);
    panel.pretendDeviceVersion(Chip::Otg, u"1.2.0"_s);
    stage.sandbox.writeProgress("success 1");
    stage.log.clear();
    const TimeBetween passed(u"[VersionRead] 清空版本号"_s, kModeQuery);
    panel.pollProgress();
    QTRY_VERIFY_WITH_TIMEOUT(passed.isOver(), kLongEnough);
    QVERIFY2(passed.isAbout(2400), passed.shown().constData());
    const QStringList lines = stage.log.lines();
    const auto listed = lines.lastIndexOf(u"hid? getOrvikHIDListPath() = 0"_s);
    QVERIFY(listed > lines.indexOf(u"[VersionRead] 清空版本号，准备重新读取"_s));
    QVERIFY(lines.value(listed + 1).startsWith(u"[ConnectingR2] START"_s));
    QVERIFY(lines.lastIndexOf(kModeQuery) > listed);
    QVERIFY(panel.awaitsNewVersions());
    QVERIFY(panel.doneText()->isVisible());
}

QUILLON_TEST(DelaysTest)
#include "tst_delays.moc"
