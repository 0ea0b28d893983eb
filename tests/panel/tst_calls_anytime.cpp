// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a host may call, called in each of the panel's states: the model, the language, the recovery.
#include "tests/panel/PanelInStates.h"
#include "tests/support/HidCalls.h"
#include "tests/support/TestProgram.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr int kPatience = PanelInStates::kPatience;

void changeModel(OpenPanel &panel)
{
    const bool toR2 = panel.model() == DeviceModel::R1;
    panel.setDeviceModel(toR2 ? DeviceModel::R2 : DeviceModel::R1);
}
} // namespace

class CallsAnytimeTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void modelInAState_data();
    void modelInAState();
    void languageInAState_data();
    void languageInAState();
    void recoveryInAState_data();
    void recoveryInAState();

private:
    void stateRows();
    bool enterState();
    /// Lets the panel live on for a while, with whatever the call has set off.
    void liveOn();
    OpenPanel &panel() { return *m_states->panel; }
    PanelStage &stage() { return m_states->stage; }

    std::unique_ptr<PanelInStates> m_states;
};

void CallsAnytimeTest::init()
{
    m_states = std::make_unique<PanelInStates>();
}

void CallsAnytimeTest::cleanup()
{
    m_states.reset();
}

void CallsAnytimeTest::stateRows()
{
    QTest::addColumn<PanelInStates::State>("state");
    for (const auto &[name, state] : PanelInStates::states())
        QTest::addRow("%s", name) << state;
}

bool CallsAnytimeTest::enterState()
{
    const auto state
        = *static_cast<PanelInStates::State *>(QTest::qData("state", qMetaTypeId<PanelInStates::State>()));
    (m_states.get()->*state)();
    return !QTest::currentTestFailed();
}

void CallsAnytimeTest::liveOn()
{
    bool isOver = false;
    QTimer::singleShot(3500ms, this, [&isOver] { isOver = true; });
    QTRY_VERIFY_WITH_TIMEOUT(isOver, kPatience);
    QVERIFY(m_states->panel);
}

void CallsAnytimeTest::modelInAState_data()
{
    stateRows();
}

void CallsAnytimeTest::modelInAState()
{
    QVERIFY(enterState());
    const QStringList before = panel().state();
    const bool isUpgrading = panel().isUpgrading();
    const bool toolRuns = panel().tool()->state() == QProcess::Running;

    changeModel(panel());
    QCOMPARE(panel().tool()->state() == QProcess::Running, toolRuns);
    if (isUpgrading) {
        QCOMPARE(changedState(before, panel().state()).size(), 1); // the model
    } else {
        QCOMPARE(panel().plan(), UpgradePlan::None);
        QVERIFY(panel().deviceVersion(Chip::Pc).isEmpty() && panel().serverVersion(Chip::Pc).isEmpty());
        QVERIFY(!panel().offersRetry() && !panel().isRecovering());
    }
    changeModel(panel());
    changeModel(panel());
    liveOn();
}

void CallsAnytimeTest::languageInAState_data()
{
    stateRows();
}

void CallsAnytimeTest::languageInAState()
{
    QVERIFY(enterState());
    const auto expected = [&](const QString &language) {
        QStringList state = panel().state();
        state.replaceInStrings(u"isChinese=true"_s, language);
        return state;
    };
    const QStringList before = expected(u"isChinese=false"_s);

    QuillonFirmwareUpgrade::setLanguage(Language::English);
    QCOMPARE(panel().state(), before); // but for the language nothing changes
    QCOMPARE(panel().windowTitle(), u"固件升级"_s); // given once, when the panel was built
    for (int i = 0; i < 3; ++i) {
        QuillonFirmwareUpgrade::setLanguage(Language::Chinese);
        QuillonFirmwareUpgrade::setLanguage(Language::English);
    }
    liveOn();
}

void CallsAnytimeTest::recoveryInAState_data()
{
    stateRows();
}

void CallsAnytimeTest::recoveryInAState()
{
    QVERIFY(enterState());
    const bool isFailed = panel().offersRetry();
    const bool toolRuns = panel().tool()->state() == QProcess::Running;
    stage().log.clear();

    panel().startAutoRecoverUpgrade();
    QCOMPARE(stage().log.count(u"[AutoRecover] start auto recover upgrade flow."_s), 1);
    QCOMPARE(panel().plan(), UpgradePlan::Both);
    QCOMPARE(panel().isUpgrading(), !isFailed); // after a failure only the retry is offered
    QCOMPARE(panel().tool()->state() == QProcess::Running, toolRuns);
    panel().startAutoRecoverUpgrade();
    liveOn();
}

QUILLON_TEST(CallsAnytimeTest)
#include "tst_calls_anytime.moc"
