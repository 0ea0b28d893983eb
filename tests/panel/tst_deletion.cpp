// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A panel that is deleted in each of its states, by its owner or with its parent: the tool ends, the library
// is released, and nothing that was under way comes to life afterwards.
#include "tests/panel/PanelInStates.h"
#include "tests/support/HidCalls.h"
#include "tests/support/Processes.h"
#include "tests/support/TestProgram.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
/// Longer than every delay that the panel ever arms.
constexpr auto kLongest = 9000ms;
constexpr int kPatience = PanelInStates::kPatience;
const QString kLastLine = u"[Destructor] Cleanup completed"_s;
} // namespace

class DeletionTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void deletedInAState_data();
    void deletedInAState();
    void deletedWithParentsThatAwaitEvents();
    void closedAndDeletedByItself();
    void deletedAndCreatedManyTimes();

private:
    PanelStage &stage() { return m_states->stage; }
    void nothingComesToLife();

    std::unique_ptr<PanelInStates> m_states;
};

void DeletionTest::init()
{
    m_states = std::make_unique<PanelInStates>();
}

void DeletionTest::cleanup()
{
    m_states.reset();
}

void DeletionTest::deletedInAState_data()
{
    QTest::addColumn<PanelInStates::State>("state");
    QTest::addColumn<bool>("withParent");
    for (const auto &[name, state] : PanelInStates::states()) {
        QTest::addRow("%s", name) << state << false;
        QTest::addRow("%s, deleted with its parent", name) << state << true;
    }
}

void DeletionTest::deletedInAState()
{
    QFETCH(PanelInStates::State, state);
    QFETCH(bool, withParent);
    (m_states.get()->*state)();
    if (QTest::currentTestFailed())
        return;
    const QProcess *process = m_states->panel->tool();
    const bool toolRuns = process->state() != QProcess::NotRunning;
    const qint64 processId = process->processId();
    stage().log.clear();

    if (withParent)
        delete m_states->parent;
    else
        delete m_states->panel;
    QVERIFY(!m_states->panel);
    QCOMPARE(stage().log.count(u"hid: release()"_s), 1);
    QCOMPARE(stage().log.lines().constLast(), kLastLine);
    QTRY_COMPARE_WITH_TIMEOUT(PanelStage::bus().openConnections(), 0, kPatience);
    if (toolRuns)
        QVERIFY(!isProcessAlive(processId));
    if (!withParent)
        nothingComesToLife();
}

void DeletionTest::nothingComesToLife()
{
    stage().log.clear();
    const qsizetype runs = FakeFlashingTool::runs().size();
    for (const QString &path : {ServerPaths::kR2PcImage, ServerPaths::kR2OtgImage})
        stage().server.release(path);
    bool isOver = false;
    QTimer::singleShot(kLongest, this, [&isOver] { isOver = true; });
    QTRY_VERIFY_WITH_TIMEOUT(isOver, kPatience);
    QStringList later = stage().log.lines();
    later.removeIf(
        [](const QString &line) { return line.startsWith(u"22222xxxxxxxxx"); }); // the client's download
    QCOMPARE(later, QStringList());
    QCOMPARE(FakeFlashingTool::runs().size(), runs);
}

// A new widget still has events to come, and its children go while it is half gone itself.
void DeletionTest::deletedWithParentsThatAwaitEvents()
{
    auto grandparent = std::make_unique<QWidget>();
    auto *parent = new QWidget(grandparent.get());
    new QWidget(parent);
    m_states->panel->setParent(parent);
    new QWidget(parent);

    grandparent.reset();
    QVERIFY(!m_states->panel);
    QCOMPARE(stage().log.lines().constLast(), kLastLine);
}

void DeletionTest::closedAndDeletedByItself()
{
    OpenPanel *panel = m_states->panel;
    panel->setParent(nullptr);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->show();
    m_states->flashesThePcChip();
    const qint64 processId = panel->tool()->processId();

    QTest::mouseClick(panel->findChild<QWidget *>(u"m_closeBtn"_s), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!m_states->panel, kPatience);
    QVERIFY(!isProcessAlive(processId));
}

// A host may build its panel each time a dialog opens: the library is acquired and released evenly.
void DeletionTest::deletedAndCreatedManyTimes()
{
    constexpr int kTimes = 30;
    for (int i = 0; i < kTimes; ++i) {
        const auto another = std::make_unique<OpenPanel>();
        if (i % 3 == 0)
            QCoreApplication::processEvents();
    }
    QCOMPARE(stage().log.count(u"hid: acquire()"_s), kTimes);
    QCOMPARE(stage().log.count(u"hid: release()"_s), kTimes);

    m_states->hasADeviceOpen(); // the first panel still has its link
}

QUILLON_TEST(DeletionTest)
#include "tst_deletion.moc"
