// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a host may call, called while one of the panel's own functions waits in a nested event loop.
#include "tests/panel/PanelTest.h"
#include "tests/panel/Situations.h"
#include "tests/support/HidCalls.h"
#include "tests/support/TestProgram.h"

#include <QAbstractButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace Situations;
using namespace std::chrono_literals;

namespace {
using Call = Step;
} // namespace

class CallsInLoopsTest : public PanelTest {
    Q_OBJECT

private slots:
    void cleanup() override;

    void calledWhileItWaits_data();
    void calledWhileItWaits();

private:
    void closeBoxes();
    QTimer m_watch;
};

void CallsInLoopsTest::cleanup()
{
    m_watch.stop();
    disconnect(&m_watch, nullptr, this, nullptr);
    PanelTest::cleanup();
}

void CallsInLoopsTest::closeBoxes()
{
    // Not the active modal widget: a recovery shows the panel over the box.
    if (const auto *box = panel().findChild<QMessageBox *>())
        box->button(QMessageBox::Ok)->click();
}

void CallsInLoopsTest::calledWhileItWaits_data()
{
    QTest::addColumn<Situation>("situation");
    QTest::addColumn<Call>("call");
    const std::pair<const char *, Call> calls[] = {
        {"the model is changed",
         [](OpenPanel &panel) {
             panel.setDeviceModel(panel.model() == DeviceModel::R1 ? DeviceModel::R2 : DeviceModel::R1);
         }},
        {"the language is switched", [](auto &) { QuillonFirmwareUpgrade::setLanguage(Language::English); }},
        {"a recovery is started", [](auto &panel) { panel.startAutoRecoverUpgrade(); }},
        {"the bar is pressed", pressBar},
        {"a boot loader is found", [](auto &panel) { panel.seeDevices({kBrick}); }},
        {"both versions come in",
         [](auto &panel) {
             panel.receive(DeviceReplies::pcVersion({1, 2, 3}));
             panel.receive(DeviceReplies::otgVersion({1, 2, 3}));
         }},
        {"the failure screen comes up", [](auto &panel) { panel.fail(); }},
    };
    for (const Situation &situation : all()) {
        for (const auto &[name, call] : calls)
            QTest::addRow("%s: %s", qPrintable(situation.name), name) << situation << call;
    }
}

void CallsInLoopsTest::calledWhileItWaits()
{
    QFETCH(Situation, situation);
    QFETCH(Call, call);
    slowDown(situation, stage().server);
    bool isCalled = false;
    connect(&m_watch, &QTimer::timeout, this, [&] {
        if (!isCalled && isWaiting(situation, stage().server)) {
            isCalled = true;
            call(panel());
        }
        closeBoxes();
    });
    m_watch.start(1ms);

    situation.step(panel());
    QTRY_VERIFY(isCalled);
    QTRY_VERIFY(!panel().findChild<QMessageBox *>());
    // The panel is whole: it still takes a version and comes to a plan.
    panel().pretendUpgrading(false);
    panel().pretendAwaitingNewVersions(false);
    panel().pretendRecovering(false);
    panel().pretendRetryOffer(false);
    panel().pretendVersions(u"1.3.0"_s, u"1.3.0"_s, u"1.3.0"_s, u"1.3.0"_s);
    panel().receive(DeviceReplies::version(0x0033, {1, 1, 1}));
    QCOMPARE(panel().plan(), UpgradePlan::None);
    QVERIFY(stage().log.contains(u"[Upgrade] 不需要升级"_s));
}

QUILLON_TEST(CallsInLoopsTest)
#include "tst_calls_in_loops.moc"
