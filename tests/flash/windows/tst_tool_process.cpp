// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The processes of a flashing tool on Windows: its console, the helpers that it starts, and what outlives
// whom.
#include "system/ToolProcess.h"
#include "tests/flash/FlashingTest.h"
#include "tests/support/Processes.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <windows.h>

using namespace Qt::StringLiterals;

namespace {
/// For a machine that is busy with other things.
constexpr int kPatience = 20'000;
} // namespace

class ToolProcessTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;
    void itsConsoleIsNotSeen();
    void helpersEndWithThePanel_data();
    void helpersEndWithThePanel();
    void helpersEndWithATooLongRun();
    void helpersOutliveATooLongRunThatHasWrittenAll();
    void helpersOfTheFirstHalfOutliveTheEndOfTheSecond();
    void helpersOutliveASuccessAlone_data();
    void helpersOutliveASuccessAlone();
    void aToolThatEndsByItselfLeavesItsHelpersInPeace();
    void theToolOutlivesACrashOfTheHost();
    void aSecondRunIsEndedLikeTheFirst();

private:
    /// Starts the tool with \a script, which ends with its helper's process ID in the home folder: that ID.
    qint64 startWithHelper(const QByteArray &script);
    qint64 m_helper = 0;
};

void ToolProcessTest::cleanup()
{
    FlashingTest::cleanup();
    if (const HANDLE helper = OpenProcess(PROCESS_TERMINATE, FALSE, DWORD(m_helper))) {
        TerminateProcess(helper, 0);
        CloseHandle(helper);
    }
    m_helper = 0;
}

qint64 ToolProcessTest::startWithHelper(const QByteArray &script)
{
    const QString path = stage().sandbox.home() + u"/helper.txt"_s;
    QFile::remove(path);
    stage().tool.obeys(script);
    panel().tool()->start(FakeFlashingTool::path(), QStringList());
    const auto id = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toLongLong() : 0;
    };
    if (!QTest::qWaitFor([&] { return id() > 0; }, kPatience))
        return 0;
    return m_helper = id();
}

void ToolProcessTest::itsConsoleIsNotSeen()
{
    const auto modifier = panel().tool()->createProcessArgumentsModifier();
    QVERIFY(modifier);
    QProcess::CreateProcessArguments arguments{};
    arguments.flags = CREATE_UNICODE_ENVIRONMENT;
    modifier(&arguments);
    QCOMPARE(arguments.flags, ulong(CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW));
}

void ToolProcessTest::helpersEndWithThePanel_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("of a tool that ends when asked") << "helper\nhang"_ba;
    QTest::newRow("of a tool that has to be killed") << "ignore-terminate\nhelper\nhang"_ba;
}

void ToolProcessTest::helpersEndWithThePanel()
{
    QFETCH(QByteArray, script);
    const qint64 helper = startWithHelper(script);
    QVERIFY(helper && isProcessAlive(helper));
    const qint64 tool = panel().tool()->processId();
    stage().panel.reset();
    QVERIFY(!isProcessAlive(tool));
    QTRY_VERIFY_WITH_TIMEOUT(!isProcessAlive(helper), kPatience);
}

void ToolProcessTest::helpersEndWithATooLongRun()
{
    const qint64 helper = startWithHelper("helper\nhang");
    QVERIFY(helper && isProcessAlive(helper));
    panel().fireWatchdog();
    QVERIFY(!stage().isToolRunning());
    QTRY_VERIFY_WITH_TIMEOUT(!isProcessAlive(helper), kPatience);
}

void ToolProcessTest::helpersOutliveATooLongRunThatHasWrittenAll()
{
    QVERIFY(!panel().progressFile().isEmpty()); // its folder is there from now on
    const qint64 helper = startWithHelper("write 100%\nhelper\nhang");
    QVERIFY(helper && isProcessAlive(helper));
    panel().fireWatchdog();
    QVERIFY(!stage().isToolRunning());
    QTest::qWait(200);
    QVERIFY(isProcessAlive(helper));
}

void ToolProcessTest::helpersOfTheFirstHalfOutliveTheEndOfTheSecond()
{
    const qint64 kept = startWithHelper("helper\nexit 0");
    QVERIFY(kept);
    QTRY_VERIFY_WITH_TIMEOUT(!stage().isToolRunning(), kPatience);
    const qint64 ended = startWithHelper("helper\nhang");
    QVERIFY(ended);
    panel().fireWatchdog();
    QTRY_VERIFY_WITH_TIMEOUT(!isProcessAlive(ended), kPatience);
    QVERIFY(isProcessAlive(kept));
    m_helper = kept;
}

void ToolProcessTest::helpersOutliveASuccessAlone_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("outlive");
    QTest::newRow("a success") << "helper\nwrite success 1\nhang"_ba << true;
    QTest::newRow("all written, and then nothing") << "helper\nwrite 100%\nhang"_ba << true;
    QTest::newRow("a failure") << "helper\nwrite success 0\nhang"_ba << false;
}

void ToolProcessTest::helpersOutliveASuccessAlone()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, outlive);
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendUpgrading(true);
    QVERIFY(!panel().progressFile().isEmpty()); // its folder is there from now on
    const qint64 helper = startWithHelper(script);
    QVERIFY(helper);
    panel().pollTimer()->start();
    QTRY_VERIFY_WITH_TIMEOUT(!stage().isToolRunning(), kPatience);
    if (outlive)
        QTest::qWait(200);
    else
        QTRY_VERIFY_WITH_TIMEOUT(!isProcessAlive(helper), kPatience);
    QCOMPARE(isProcessAlive(helper), outlive);
}

// It may still have a device to restart.
void ToolProcessTest::aToolThatEndsByItselfLeavesItsHelpersInPeace()
{
    const qint64 helper = startWithHelper("helper\nexit 0");
    QVERIFY(helper);
    QTRY_VERIFY_WITH_TIMEOUT(!stage().isToolRunning(), kPatience);
    stage().panel.reset();
    QTest::qWait(200);
    QVERIFY(isProcessAlive(helper));
}

void ToolProcessTest::theToolOutlivesACrashOfTheHost()
{
    const qint64 helper = startWithHelper("helper\nhang");
    QVERIFY(helper);
    const qint64 tool = panel().tool()->processId();
    // What the system does to a crashed program: the handles that it has are closed.
    const auto children = panel().tool()->children();
    for (QObject *child : children) {
        if (QByteArray(child->metaObject()->className()).endsWith("Family"))
            delete child;
    }
    QVERIFY(panel().tool()->children().size() < children.size());
    QTest::qWait(200);
    QVERIFY(isProcessAlive(tool));
    QVERIFY(isProcessAlive(helper));
}

void ToolProcessTest::aSecondRunIsEndedLikeTheFirst()
{
    for (int run = 0; run < 2; ++run) {
        const qint64 helper = startWithHelper("helper\nhang");
        QVERIFY(helper && isProcessAlive(helper));
        panel().fireWatchdog();
        QVERIFY(!stage().isToolRunning());
        QTRY_VERIFY_WITH_TIMEOUT(!isProcessAlive(helper), kPatience);
    }
}

QUILLON_TEST(ToolProcessTest)
#include "tst_tool_process.moc"
