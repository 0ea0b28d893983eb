// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A panel goes down while its tool is one that the system needs long to end.
#include "tests/flash/FlashingTest.h"
#include "tests/support/Processes.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

class ToolSlowToDieTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void theHostDoesNotWaitForIt();
};

/// Half a second of this test's clock is 10 ms, and half a gigabyte takes the system several times that.
void ToolSlowToDieTest::theHostDoesNotWaitForIt()
{
    stage().tool.obeys("ignore-terminate\nhold-memory 512\nwrite 1%\nhang");
    QDir().mkpath(QFileInfo(stage().sandbox.progressFile()).path());
    panel().tool()->start(FakeFlashingTool::path(), {});
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(stage().sandbox.progressFile()), 600'000);
    const QPointer<QProcess> tool = panel().tool();
    const qint64 processId = tool->processId();

    stage().panel.reset();
    QVERIFY2(tool, "the panel has waited until the tool was gone");
    QCOMPARE(stage().log.startingWith(u"QProcess: Destroyed while process"_s), QStringList());
    QTRY_VERIFY_WITH_TIMEOUT(!tool, 600'000);
    QVERIFY(!isProcessAlive(processId));
}

QUILLON_TEST(ToolSlowToDieTest)
#include "tst_tool_slow_to_die.moc"
