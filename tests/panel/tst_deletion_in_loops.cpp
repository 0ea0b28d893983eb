// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A panel that is deleted while one of its own functions waits in a nested event loop or tells a receiver
// something: whoever deletes it, that function ends without touching it again.
#include "tests/panel/Situations.h"
#include "tests/support/HidCalls.h"
#include "tests/support/TestProgram.h"

#include <QPointer>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;
using namespace Situations;
using namespace std::chrono_literals;

namespace {
using Deletion = std::function<void(FirmwareUpgradeWidget *)>;

const QString kDone = u"[Destructor] Cleanup completed"_s;

} // namespace

class DeletionInLoopsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void deletedWhileItWaits_data();
    void deletedWhileItWaits();
    void deletedByAReceiver_data();
    void deletedByAReceiver();

private:
    void deleteAsSoonAs(const std::function<bool()> &isTime, const Deletion &remove);
    /// What a deleted panel must not say any more.
    QStringList linesAfterTheEnd() const;

    std::unique_ptr<PanelStage> m_stage;
    QPointer<OpenPanel> m_panel;
    std::unique_ptr<QTimer> m_watch;
    qsizetype m_requestsAtDeletion = 0;
};

void DeletionInLoopsTest::init()
{
    m_stage = std::make_unique<PanelStage>();
    m_stage->panel.reset();
    auto *parent = new QWidget;
    m_panel = new OpenPanel(parent);
    m_stage->log.clear();
}

void DeletionInLoopsTest::cleanup()
{
    m_watch.reset();
    if (m_panel)
        delete m_panel->parentWidget();
    m_stage.reset();
}

void DeletionInLoopsTest::deleteAsSoonAs(const std::function<bool()> &isTime, const Deletion &remove)
{
    m_watch = std::make_unique<QTimer>();
    connect(m_watch.get(), &QTimer::timeout, this, [this, isTime, remove] {
        if (!m_panel || !isTime())
            return;
        m_watch->stop();
        m_requestsAtDeletion = m_stage->server.paths().size();
        remove(m_panel);
    });
    m_watch->start(1ms);
}

QStringList DeletionInLoopsTest::linesAfterTheEnd() const
{
    // The server's client goes on to its end, and so does a scan that was under way.
    static const QRegularExpression harmless(
        u"^(request protobufHttp|find DFU PID and trigger auto recover\\.$|1@####$)"_s);
    const QStringList all = m_stage->log.lines();
    QStringList after;
    for (const QString &line : all.mid(all.indexOf(kDone) + 1)) {
        if (!harmless.match(line).hasMatch())
            after.append(line);
    }
    return after;
}

void DeletionInLoopsTest::deletedWhileItWaits_data()
{
    QTest::addColumn<Situation>("situation");
    QTest::addColumn<Deletion>("remove");
    const std::pair<const char *, Deletion> deletions[] = {
        {"deleted", [](FirmwareUpgradeWidget *panel) { delete panel; }},
        {"deleted later", [](FirmwareUpgradeWidget *panel) { panel->deleteLater(); }},
        {"deleted with its parent", [](FirmwareUpgradeWidget *panel) { delete panel->parentWidget(); }},
        {"deleted later and then at once",
         [](FirmwareUpgradeWidget *panel) {
             panel->deleteLater();
             delete panel;
         }},
    };
    for (const Situation &situation : all()) {
        for (const auto &[name, remove] : deletions)
            QTest::addRow("%s: %s", qPrintable(situation.name), name) << situation << remove;
    }
}

void DeletionInLoopsTest::deletedWhileItWaits()
{
    QFETCH(Situation, situation);
    QFETCH(Deletion, remove);
    const QPointer<QWidget> parent = m_panel->parentWidget();
    slowDown(situation, m_stage->server);

    deleteAsSoonAs([&] { return isWaiting(situation, m_stage->server); }, remove);
    situation.step(*m_panel);
    QTRY_VERIFY(!m_panel);
    QCOMPARE(m_stage->log.count(u"hid: release()"_s), 1);
    QCOMPARE(linesAfterTheEnd(), QStringList());
    QCOMPARE(m_stage->server.paths().size(), m_requestsAtDeletion);
    QVERIFY(!QApplication::activeModalWidget());
    delete parent;
}

void DeletionInLoopsTest::deletedByAReceiver_data()
{
    QTest::addColumn<Step>("step");
    const auto deleteAt = [](auto signal, const Step &step) -> Step {
        return [signal, step](OpenPanel &panel) {
            connect(&panel, signal, qApp, [panel = &panel] { delete panel; });
            step(panel);
        };
    };
    QTest::newRow("of the versions, after a read") << deleteAt(
        &FirmwareUpgradeWidget::upgradeDisplayMsg, [](auto &panel) { readWith(panel, u"1.2.0"_s); });
    QTest::newRow("of the versions, in the wait after an upgrade")
        << deleteAt(&FirmwareUpgradeWidget::upgradeDisplayMsg, [](auto &panel) {
               panel.pretendAwaitingNewVersions(true);
               readWith(panel, u"1.2.0"_s);
           });
    QTest::newRow("of the versions, at a refresh")
        << deleteAt(&FirmwareUpgradeWidget::upgradeDisplayMsg, [](auto &panel) { panel.refreshVersions(0); });
    QTest::newRow("of a bricked device")
        << deleteAt(&FirmwareUpgradeWidget::onDeviceBrickedDetected, [](auto &panel) {
               disconnect(&panel, &FirmwareUpgradeWidget::onDeviceBrickedDetected, &panel, nullptr);
               panel.seeDevices({kBrick});
           });
    QTest::newRow("of a bricked device, in the change of the model")
        << deleteAt(&FirmwareUpgradeWidget::onDeviceBrickedDetected, [](auto &panel) {
               disconnect(&panel, &FirmwareUpgradeWidget::onDeviceBrickedDetected, &panel, nullptr);
               PanelStage::bus().plug(0x0010);
               panel.setDeviceModel(DeviceModel::R1);
           });
    QTest::newRow("of the OTG interface")
        << deleteAt(&FirmwareUpgradeWidget::r2otgConnected, [](auto &panel) {
               panel.pretendUpgrading(true);
               panel.pretendPlan(UpgradePlan::OtgOnly);
               panel.seeDevices({u"pid_001f"_s});
           });
}

void DeletionInLoopsTest::deletedByAReceiver()
{
    QFETCH(Step, step);
    const QPointer<QWidget> parent = m_panel->parentWidget();

    step(*m_panel);
    QVERIFY(!m_panel);
    QCOMPARE(m_stage->log.count(u"hid: release()"_s), 1);
    QCOMPARE(m_stage->server.paths(), QStringList());
    delete parent;
}

QUILLON_TEST(DeletionInLoopsTest)
#include "tst_deletion_in_loops.moc"
