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
    void itsEndDecidesNothing_data();
    void itsEndDecidesNothing();
    void itsEndIsHeardWithoutAWatchdog();
    void theTimeLimitKills();
    void theTimeLimitOfAnEndedToolDoesNothing();
    void whatItSaysIsNotRead();
    void endsWithThePanel_data();
    void endsWithThePanel();

private:
    void start(int pid = 14) { m->panel->flash(m->image, pid); }
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
    spoil(*m);
    OpenPanel &panel = *m->panel;
    panel.pretendPlan(UpgradePlan::Both);
    panel.pretendUpgrading(true);
    panel.bar()->setValue(33);
    panel.bar()->setBackgroundColor(Qt::yellow);
    m->sandbox.writeProgress("success 1");
    const QStringList state = panel.state();
    const QStringList screen = Screen::everything(panel);
    m->log.clear();

    QElapsedTimer time;
    time.start();
    panel.flash(imageName.isEmpty() ? QString() : m->sandbox.home() + u'/' + imageName, 14);
    QVERIFY(time.elapsed() < 3500);
    QCOMPARE(m->log.lines().size(), 3);
    QCOMPARE(m->log.lines().at(1), u"##222 exePath is: "_s + FakeFlashingTool::path());
    QCOMPARE(m->log.lines().at(2), line);
    QCOMPARE(panel.tool()->state(), QProcess::NotRunning);
    QVERIFY(!panel.watchdog()->isActive());
    QVERIFY(!panel.pollTimer()->isActive());
    QVERIFY(!QFile::exists(m->sandbox.progressFile()));

    QCOMPARE(panel.state(), state);
    QCOMPARE(Screen::everything(panel), screen);
    QCOMPARE(m->percentOnBar(), 33);
    QCOMPARE(panel.barBackground(), QColor(Qt::yellow));
    QTest::qWait(150);
    QCOMPARE(panel.state(), state);
    QVERIFY(m->tool.runs().isEmpty());
}

void FlashingToolEndTest::itsEndDecidesNothing_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("line");
    const QString exit = u"OrvikFirmwareUpdata.exe process exit, exitCode="_s;
    QTest::newRow("exit code 0") << "await go\nexit 0"_ba << QString(exit + u"0");
    QTest::newRow("exit code 3") << "await go\nexit 3"_ba << QString(exit + u"3");
    QTest::newRow("a crash") << "await go\ncrash"_ba << exit;
}

void FlashingToolEndTest::itsEndDecidesNothing()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, line);
    m->tool.obeys(script);
    start();
    // The poll would come to a verdict; here only the end itself is of interest.
    m->panel->pollTimer()->stop();
    m->panel->pretendUpgrading(true);
    const QStringList state = m->panel->state();
    const QStringList screen = Screen::everything(*m->panel);
    m->log.clear();
    FakeFlashingTool::signal(u"go"_s);
    QTRY_COMPARE(m->panel->tool()->state(), QProcess::NotRunning);
    QCOMPARE(m->log.lines().size(), 1);
    QVERIFY2(m->log.lines().first().startsWith(line), qPrintable(m->log.lines().first()));
    QVERIFY(!m->panel->watchdog()->isActive());
    QCOMPARE(m->panel->state(), state);
    QCOMPARE(Screen::everything(*m->panel), screen);
}

void FlashingToolEndTest::itsEndIsHeardWithoutAWatchdog()
{
    m->log.clear();
    m->panel->endTool(7, QProcess::NormalExit);
    QCOMPARE(m->log.lines(), QStringList(u"OrvikFirmwareUpdata.exe process exit, exitCode=7"_s));
}

void FlashingToolEndTest::theTimeLimitKills()
{
    QVERIFY(m->runSilentTool());
    QTRY_COMPARE(m->tool.runs().size(), 1);
    m->panel->pretendUpgrading(true);
    const QStringList state = m->panel->state();
    const QStringList screen = Screen::everything(*m->panel);
    m->log.clear();
    QElapsedTimer time;
    time.start();
    m->panel->fireWatchdog();
    QVERIFY(time.elapsed() < 1500);
    QCOMPARE(m->panel->tool()->state(), QProcess::NotRunning);
    QCOMPARE(m->log.lines(), m->log.startingWith(u"OrvikFirmwareUpdata.exe process exit, exitCode="_s));
    QCOMPARE(m->log.lines().size(), 1);
    QCOMPARE(m->panel->state(), state);
    QCOMPARE(Screen::everything(*m->panel), screen);
}

void FlashingToolEndTest::theTimeLimitOfAnEndedToolDoesNothing()
{
    const QStringList state = m->panel->state();
    m->log.clear();
    m->panel->fireWatchdog();
    QCOMPARE(m->log.lines(), QStringList());
    QCOMPARE(m->panel->state(), state);
}

void FlashingToolEndTest::whatItSaysIsNotRead()
{
    m->panel->pretendPlan(UpgradePlan::PcOnly);
    m->panel->pretendUpgrading(true);
    m->tool.obeys("chatter 4000000\nwrite success 1");
    start();
    QTRY_COMPARE_WITH_TIMEOUT(m->percentOnBar(), 100, 30000);
    QVERIFY(!m->panel->isUpgrading());
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
    m->tool.obeys(script);
    start();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m->sandbox.progressFile()), 20000);
    const qint64 processId = m->panel->tool()->processId();
    QVERIFY(isProcessAlive(processId));
    QElapsedTimer time;
    time.start();
    m->panel.reset();
    QVERIFY2(time.elapsed() < milliseconds, qPrintable(QString::number(time.elapsed())));
    QVERIFY(!isProcessAlive(processId));
}

QUILLON_TEST(FlashingToolEndTest)
#include "tst_flashing_tool_end.moc"
