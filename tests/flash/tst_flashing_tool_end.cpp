// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A flashing tool that cannot be started, and how a running one ends.
#include "tests/flash/FlashingTest.h"
#include "tests/support/Processes.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class FlashingToolEndTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void nothingChangesWhenItCannotStart_data();
    void nothingChangesWhenItCannotStart();
#ifdef Q_OS_LINUX
    void aForbiddenStartLeavesNoDescriptor();
#endif
    void itsEndDecidesNothing_data();
    void itsEndDecidesNothing();
    void itsEndIsHeardWithoutAWatchdog();
    void itsReportIsReadAsSoonAsItHasEnded();
    void anEndWithoutAPollStartsNone();
    void theTimeLimitKills();
    void theTimeLimitOfAnEndedToolDoesNothing();
    void whatItSaysIsNotRead();
    void endsWithThePanel_data();
    void endsWithThePanel();

private:
    void start(int pid = 14)
    {
        panel().flash(stage().image, pid);
    }
};

void FlashingToolEndTest::nothingChangesWhenItCannotStart_data()
{
    QTest::addColumn<std::function<void(FlashingStage &)>>("spoil");
    QTest::addColumn<QString>("imageName");
    QTest::addColumn<QString>("line");
    using Spoil = std::function<void(FlashingStage &)>;
    const QString good = u"R2 固件_PC1.2.3.bin"_s;
    const QString noTool = u"OrvikFirmwareUpdata.exe isn't exit."_s;
    const QString noImage = u"Firmware upgrade bin file isn't exit."_s;
    const QString noStart = u"Start OrvikFirmwareUpdata.exe failed."_s;

    QTest::newRow("no tool") << Spoil([](FlashingStage &stage) { stage.tool.remove(); }) << good << noTool;
    QTest::newRow("no tool and no image")
        << Spoil([](FlashingStage &stage) { stage.tool.remove(); }) << QString() << noTool;
    QTest::newRow("no image named") << Spoil([](FlashingStage &) {}) << QString() << noImage;
    QTest::newRow("an image that does not exist")
        << Spoil([](FlashingStage &) {}) << u"gone.bin"_s << noImage;
    QTest::newRow("a tool that may not be executed")
        << Spoil([](FlashingStage &stage) { stage.tool.forbid(); }) << good << noStart;
    QTest::newRow("a tool that is no program")
        << Spoil([](FlashingStage &stage) { stage.tool.replaceBy("MZ\0\0 not for this machine"_ba); }) << good
        << noStart;
    QTest::newRow("a tool that is empty")
        << Spoil([](FlashingStage &stage) { stage.tool.replaceBy({}); }) << good << noStart;
    QTest::newRow("a tool whose interpreter is missing")
        << Spoil([](FlashingStage &stage) { stage.tool.replaceBy("#!/no/such/interpreter\n"_ba); }) << good
        << noStart;
    QTest::newRow("a folder in the tool's place") << Spoil([](FlashingStage &stage) {
        stage.tool.remove();
        QDir().mkdir(FakeFlashingTool::path());
    }) << good << noStart;
}

void FlashingToolEndTest::nothingChangesWhenItCannotStart()
{
    QFETCH(std::function<void(FlashingStage &)>, spoil);
    QFETCH(QString, imageName);
    QFETCH(QString, line);
    const auto noFolder = qScopeGuard([] { QDir().rmdir(FakeFlashingTool::path()); });
    spoil(stage());
    panel().pretendPlan(UpgradePlan::Both);
    panel().pretendUpgrading(true);
    panel().bar()->setValue(33);
    panel().bar()->setBackgroundColor(Qt::yellow);
    stage().sandbox.writeProgress("success 1");
    const QStringList state = panel().state();
    const QStringList screen = Screen::everything(panel());
    stage().log.clear();

    QElapsedTimer time;
    time.start();
    panel().flash(imageName.isEmpty() ? QString() : stage().sandbox.home() + u'/' + imageName, 14);
    QVERIFY(time.elapsed() < 3500);
    QCOMPARE(stage().log.lines().size(), 3);
    QCOMPARE(stage().log.lines().at(1), u"##222 exePath is:  "_s + FakeFlashingTool::path());
    QCOMPARE(stage().log.lines().at(2), line);
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    QVERIFY(!panel().watchdog()->isActive());
    QVERIFY(!panel().pollTimer()->isActive());
    QVERIFY(!QFile::exists(stage().sandbox.progressFile()));

    QCOMPARE(panel().state(), state);
    QCOMPARE(Screen::everything(panel()), screen);
    QCOMPARE(stage().percentOnBar(), 33);
    QCOMPARE(panel().barBackground(), QColor(Qt::yellow));
    QTest::qWait(150);
    QCOMPARE(panel().state(), state);
    QVERIFY(stage().tool.runs().isEmpty());
}

#ifdef Q_OS_LINUX
void FlashingToolEndTest::aForbiddenStartLeavesNoDescriptor()
{
    const auto descriptors
        = [] { return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size(); };
    stage().tool.forbid();
    start();
    const auto before = descriptors();
    for (int i = 0; i < 10; ++i)
        start();
    QCOMPARE(descriptors(), before);
}
#endif

void FlashingToolEndTest::itsEndDecidesNothing_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("line");
    const QString exit = u"OrvikFirmwareUpdata.exe process exit, exitCode= "_s;
    QTest::newRow("exit code 0") << "await go\nexit 0"_ba << QString(exit + u"0");
    QTest::newRow("exit code 3") << "await go\nexit 3"_ba << QString(exit + u"3");
    QTest::newRow("a crash") << "await go\ncrash"_ba << exit;
}

void FlashingToolEndTest::itsEndDecidesNothing()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, line);
    stage().tool.obeys(script);
    start();
    // The poll would come to a verdict; here only the end itself is of interest.
    panel().pollTimer()->stop();
    panel().pretendUpgrading(true);
    const QStringList state = panel().state();
    const QStringList screen = Screen::everything(panel());
    stage().log.clear();
    FakeFlashingTool::signal(u"go"_s);
    QTRY_COMPARE(panel().tool()->state(), QProcess::NotRunning);
    QCOMPARE(stage().log.lines().size(), 1);
    QVERIFY2(stage().log.lines().first().startsWith(line), qPrintable(stage().log.lines().first()));
    QVERIFY(!panel().watchdog()->isActive());
    QCOMPARE(panel().state(), state);
    QCOMPARE(Screen::everything(panel()), screen);
}

void FlashingToolEndTest::itsEndIsHeardWithoutAWatchdog()
{
    stage().log.clear();
    panel().endTool(7, QProcess::NormalExit);
    QCOMPARE(stage().log.lines(), QStringList(u"OrvikFirmwareUpdata.exe process exit, exitCode= 7"_s));
}

void FlashingToolEndTest::itsReportIsReadAsSoonAsItHasEnded()
{
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendUpgrading(true);
    panel().pollTimer()->setInterval(1h);
    stage().tool.obeys("write success 1");
    start();
    QTRY_VERIFY_WITH_TIMEOUT(!panel().isUpgrading(), 5000);
    QVERIFY(stage().log.lines().contains(u"Successfully upgrade !!!"_s));
    QCOMPARE(panel().pollTimer()->interval(), 3'600'000);
}

/// A verdict that was reached before the tool has ended is not reached again.
void FlashingToolEndTest::anEndWithoutAPollStartsNone()
{
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendUpgrading(true);
    stage().tool.obeys("write success 1");
    start();
    panel().pollTimer()->stop();
    QTRY_COMPARE_WITH_TIMEOUT(panel().tool()->state(), QProcess::NotRunning, 5000);
    QTest::qWait(50);
    QVERIFY(panel().isUpgrading());
}

void FlashingToolEndTest::theTimeLimitKills()
{
    QVERIFY(stage().runSilentTool());
    QTRY_COMPARE(stage().tool.runs().size(), 1);
    panel().pretendUpgrading(true);
    const QStringList state = panel().state();
    const QStringList screen = Screen::everything(panel());
    stage().log.clear();
    QElapsedTimer time;
    time.start();
    panel().fireWatchdog();
    QVERIFY(time.elapsed() < 1500);
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    QCOMPARE(stage().log.lines(),
             stage().log.startingWith(u"OrvikFirmwareUpdata.exe process exit, exitCode="_s));
    QCOMPARE(stage().log.lines().size(), 1);
    QCOMPARE(panel().state(), state);
    QCOMPARE(Screen::everything(panel()), screen);
}

void FlashingToolEndTest::theTimeLimitOfAnEndedToolDoesNothing()
{
    const QStringList state = panel().state();
    stage().log.clear();
    panel().fireWatchdog();
    QCOMPARE(stage().log.lines(), QStringList());
    QCOMPARE(panel().state(), state);
}

void FlashingToolEndTest::whatItSaysIsNotRead()
{
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendUpgrading(true);
    stage().tool.obeys("chatter 4000000\nwrite success 1");
    start();
    QTRY_COMPARE_WITH_TIMEOUT(stage().percentOnBar(), 100, 30000);
    QVERIFY(!panel().isUpgrading());
}

void FlashingToolEndTest::endsWithThePanel_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("milliseconds");
#ifdef Q_OS_WIN
    constexpr int kNeighbours = 1500; // the tests for Windows run many at a time, under Wine
#else
    constexpr int kNeighbours = 0;
#endif
    QTest::newRow("a tool that ends when asked") << "write 5%\nhang"_ba << 900 + kNeighbours;
    QTest::newRow("a tool that has to be killed")
        << "ignore-terminate\nwrite 5%\nhang"_ba << 1500 + kNeighbours;
}

void FlashingToolEndTest::endsWithThePanel()
{
    QFETCH(QByteArray, script);
    QFETCH(int, milliseconds);
    stage().tool.obeys(script);
    start();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(stage().sandbox.progressFile()), 20000);
    const qint64 processId = panel().tool()->processId();
    QVERIFY(isProcessAlive(processId));
    QElapsedTimer time;
    time.start();
    stage().panel.reset();
    QVERIFY2(time.elapsed() < milliseconds, qPrintable(QString::number(time.elapsed())));
    QVERIFY(!isProcessAlive(processId));
}

QUILLON_TEST(FlashingToolEndTest)
#include "tst_flashing_tool_end.moc"
