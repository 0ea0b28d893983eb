// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderPort.h"
#include "rig/BootLoaderReports.h"
#include "rig/FirmwareImage.h"
#include "rig/ToolWire.h"
#include "tests/support/Sandbox.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace rig;

namespace {

constexpr int kPatience = 120000; // of the sped-up clock
const char *const kComplete = "success 1";

enum class End { Exits, Crashes, Stands };

QByteArrayList lines(const QByteArray &progress)
{
    QByteArrayList found = progress.split('\n');
    if (found.last().isEmpty())
        found.removeLast();
    return found;
}

QList<int> percentages(const QByteArray &progress)
{
    QList<int> found;
    for (const QByteArray &line : lines(progress)) {
        if (line.endsWith('%'))
            found.append(line.chopped(1).toInt());
    }
    return found;
}

} // namespace

class RigToolTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aChipIsFlashed_data();
    void aChipIsFlashed();
    void thePercentageRisesSmoothly();
    void theRunIsOnRecord();
    void theWrongCommandLineIsRefused_data();
    void theWrongCommandLineIsRefused();
    void whatCannotBeFlashedIsReported_data();
    void whatCannotBeFlashedIsReported();
    void theToolWaitsAMomentForTheDevice();
    void withoutARigTheToolReportsFailure();
    void aFaultShowsInTheFileAndTheExit_data();
    void aFaultShowsInTheFileAndTheExit();
    void standingPercentages_data();
    void standingPercentages();
    void askedToEndItEnds_data();
    void askedToEndItEnds();
    void aKilledToolLeavesABrick();
    void aStandingToolEndsWithTheRig();
    void theOldLinesOfAHugeFileComeFirst();
    void chatterGoesToTheOutput();
    void aFaultForOneChipSparesTheOther();
    void pullingTheCableEndsInFailure_data();
    void pullingTheCableEndsInFailure();
    void aToolThatShouldUseUsbIsHungUpOn();
    void nonsenseOnTheSocketIsHungUpOn_data();
    void nonsenseOnTheSocketIsHungUpOn();

private:
    QString writeImage(const QByteArray &image);
    void start(const QStringList &arguments);
    void startFlashing(Chip chip);
    void waitForEnd();
    QByteArray progress() const;
    bool reaches(int percent) const
    {
        return percentages(progress()).value(percentages(progress()).size() - 1, -1) >= percent;
    }

    std::unique_ptr<Sandbox> m_sandbox;
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<FaultBoard> m_faults;
    std::unique_ptr<RigThread> m_thread;
    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<BootLoaderPort> m_port;
    std::unique_ptr<QProcess> m_tool;
    QByteArray m_image;
};

void RigToolTest::init()
{
    m_sandbox = std::make_unique<Sandbox>();
    m_journal = std::make_unique<Journal>();
    m_faults = std::make_unique<FaultBoard>();
    m_thread = std::make_unique<RigThread>();
    m_device = std::make_unique<SimulatedDevice>(*m_thread, *m_faults, *m_journal);
    m_port = std::make_unique<BootLoaderPort>(*m_thread, *m_device, *m_faults, *m_journal);
    QVERIFY(m_port->start());
    m_tool = std::make_unique<QProcess>();
    m_tool->setProgram(QStringLiteral(FLASHING_TOOL));
}

void RigToolTest::cleanup()
{
    m_tool->kill();
    m_tool->waitForFinished();
    m_tool.reset();
    m_port.reset();
    m_device.reset();
    m_thread.reset();
    m_sandbox.reset();
}

QString RigToolTest::writeImage(const QByteArray &image)
{
    m_image = image;
    QFile file(m_sandbox->home() + QStringLiteral("/an image.bin"));
    if (!file.open(QIODevice::WriteOnly) || file.write(image) != image.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

void RigToolTest::start(const QStringList &arguments)
{
    m_tool->setArguments(arguments);
    m_tool->start();
}

// Both cables in, so that pulling one leaves the other chip alone.
void RigToolTest::startFlashing(Chip chip)
{
    m_device->plug(Chip::Pc);
    m_device->plug(Chip::Otg);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->interfaces().size(), 2, kPatience);
    const QString image = writeImage(buildImage({Model::R2, chip, QVersionNumber(1, 9, 0)}));
    start(
        {image, QStringLiteral("--pid"), chip == Chip::Pc ? QStringLiteral("000e") : QStringLiteral("001f")});
}

void RigToolTest::waitForEnd()
{
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->state(), QProcess::NotRunning, kPatience);
}

QByteArray RigToolTest::progress() const
{
    QFile file(m_sandbox->progressFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void RigToolTest::aChipIsFlashed_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<bool>("bricked");
    QTest::addColumn<QString>("pid");
    QTest::addColumn<bool>("already");
    QTest::newRow("R1 PC running") << Model::R1 << Chip::Pc << false << QStringLiteral("0001") << false;
    QTest::newRow("R1 PC in its boot loader")
        << Model::R1 << Chip::Pc << true << QStringLiteral("0010") << true;
    QTest::newRow("R1 OTG running, said to be in its boot loader")
        << Model::R1 << Chip::Otg << false << QStringLiteral("0012") << true;
    QTest::newRow("R1 OTG in its boot loader")
        << Model::R1 << Chip::Otg << true << QStringLiteral("0012") << true;
    QTest::newRow("R2 PC running") << Model::R2 << Chip::Pc << false << QStringLiteral("000e") << false;
    QTest::newRow("R2 PC in its boot loader")
        << Model::R2 << Chip::Pc << true << QStringLiteral("00ff") << true;
    QTest::newRow("R2 OTG running") << Model::R2 << Chip::Otg << false << QStringLiteral("001f") << false;
    QTest::newRow("R2 OTG in its boot loader")
        << Model::R2 << Chip::Otg << true << QStringLiteral("0065") << true;
}

void RigToolTest::aChipIsFlashed()
{
    QFETCH(Model, model);
    QFETCH(Chip, chip);
    QFETCH(bool, bricked);
    QFETCH(QString, pid);
    QFETCH(bool, already);
    m_device->setModel(model);
    if (bricked)
        m_device->brick(chip);
    m_device->plug(chip);
    QStringList arguments{writeImage(buildImage({model, chip, QVersionNumber(1, 9, 0)})),
                          QStringLiteral("--pid"), pid};
    if (already)
        arguments.append(QStringLiteral("--already-in-dfu"));
    start(arguments);
    waitForEnd();
    QCOMPARE(m_tool->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_tool->exitCode(), 0);
    QCOMPARE(lines(progress()).last(), QByteArray(kComplete));
    QCOMPARE(sha256(m_device->flash(chip)), sha256(m_image));
    QTRY_COMPARE_WITH_TIMEOUT(m_device->runningVersion(chip), QVersionNumber(1, 9, 0), kPatience);
}

void RigToolTest::thePercentageRisesSmoothly()
{
    startFlashing(Chip::Pc);
    const auto started = m_journal->now();
    waitForEnd();
    const auto took = m_journal->now() - started;
    QList<int> expected;
    for (int percent = 0; percent <= 100; ++percent)
        expected.append(percent);
    QCOMPARE(percentages(progress()), expected);
    QVERIFY2(took >= std::chrono::seconds(6), qPrintable(QString::number(qint64(took.count()))));
}

void RigToolTest::theRunIsOnRecord()
{
    int started = 0;
    int ended = 0;
    connect(m_port.get(), &BootLoaderPort::toolStarted, this, [&started] { ++started; });
    connect(m_port.get(), &BootLoaderPort::toolEnded, this, [&ended] { ++ended; });
    startFlashing(Chip::Otg);
    QTRY_COMPARE_WITH_TIMEOUT(started, 1, kPatience);
    QVERIFY(m_port->isFlashing());
    const ToolRun run = m_port->runs().first();
    QCOMPARE(run.processId, m_tool->processId());
    QCOMPARE(run.arguments, m_tool->arguments());
    QCOMPARE(run.productId, 0x001F);
    QCOMPARE(run.chip, Chip::Otg);
    QVERIFY(run.running && !run.finished);
    m_port->forgetRuns();
    QCOMPARE(m_port->runs().size(), 1);
    waitForEnd();
    QTRY_COMPARE_WITH_TIMEOUT(ended, 1, kPatience);
    QVERIFY(!m_port->isFlashing());
    QVERIFY(m_port->runs().first().finished);
    m_port->forgetRuns();
    QVERIFY(m_port->runs().isEmpty());
}

void RigToolTest::theWrongCommandLineIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    const auto image = QStringLiteral("image.bin");
    const auto option = QStringLiteral("--pid");
    const auto already = QStringLiteral("--already-in-dfu");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("no product ID") << QStringList{image};
    QTest::newRow("an option without its value") << QStringList{image, option};
    QTest::newRow("three digits") << QStringList{image, option, QStringLiteral("00e")};
    QTest::newRow("a prefix") << QStringList{image, option, QStringLiteral("0x0e")};
    QTest::newRow("no number") << QStringList{image, option, QStringLiteral("wxyz")};
    QTest::newRow("another option") << QStringList{image, option, QStringLiteral("000e"),
                                                   QStringLiteral("--force")};
    QTest::newRow("one word too many") << QStringList{image, option, QStringLiteral("000e"), already, image};
    QTest::newRow("another order") << QStringList{option, QStringLiteral("000e"), image};
}

void RigToolTest::theWrongCommandLineIsRefused()
{
    QFETCH(QStringList, arguments);
    start(arguments);
    waitForEnd();
    QCOMPARE(m_tool->exitCode(), 2);
    QVERIFY(m_tool->readAllStandardError().contains("usage"));
    QVERIFY(!QFile::exists(m_sandbox->progressFile()));
}

void RigToolTest::whatCannotBeFlashedIsReported_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("pid");
    QTest::addColumn<bool>("already");
    const QByteArray image = buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 9, 0)});
    QTest::newRow("a product ID that is not there") << image << QStringLiteral("001f") << false;
    QTest::newRow("a product ID that nobody has") << image << QStringLiteral("ffff") << false;
    QTest::newRow("a running chip said to be in its boot loader") << image << QStringLiteral("000e") << true;
    QTest::newRow("an empty image") << QByteArray() << QStringLiteral("000e") << false;
    QTest::newRow("an image larger than the flash")
        << QByteArray(600 * kKiB, 'x') << QStringLiteral("000e") << false;
}

void RigToolTest::whatCannotBeFlashedIsReported()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, pid);
    QFETCH(bool, already);
    m_device->plug(Chip::Pc);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->interfaces().size(), 1, kPatience);
    QStringList arguments{writeImage(image), QStringLiteral("--pid"), pid};
    if (already)
        arguments.append(QStringLiteral("--already-in-dfu"));
    start(arguments);
    waitForEnd();
    QCOMPARE(m_tool->exitCode(), 1);
    QCOMPARE(lines(progress()).last(), QByteArray("success 0"));
    QVERIFY(!m_port->runs().isEmpty() && !m_port->runs().first().finished);
}

void RigToolTest::theToolWaitsAMomentForTheDevice()
{
    start({writeImage(buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 9, 0)})), QStringLiteral("--pid"),
           QStringLiteral("000e")});
    QTRY_COMPARE_WITH_TIMEOUT(percentages(progress()), QList{0}, kPatience);
    m_device->plug(Chip::Pc);
    waitForEnd();
    QCOMPARE(lines(progress()).last(), QByteArray(kComplete));
}

void RigToolTest::withoutARigTheToolReportsFailure()
{
    qunsetenv(wire::kSocketVariable);
    start({writeImage("image"), QStringLiteral("--pid"), QStringLiteral("000e")});
    waitForEnd();
    QCOMPARE(m_tool->exitCode(), 1);
    QCOMPARE(progress(), QByteArray("0%\nsuccess 0\n"));
}

void RigToolTest::aFaultShowsInTheFileAndTheExit_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("lastLine");
    QTest::addColumn<bool>("flashed");
    const QByteArray none;
    QTest::newRow("crashes at the start") << Fault::ToolCrashesAtStart << End::Crashes << 0 << none << false;
    QTest::newRow("crashes") << Fault::ToolCrashes << End::Crashes << 0 << QByteArray("30%") << false;
    QTest::newRow("no file") << Fault::ToolNoFile << End::Exits << 1 << none << false;
    QTest::newRow("empty file") << Fault::ToolEmptyFile << End::Exits << 1 << QByteArray("") << false;
    QTest::newRow("slow start") << Fault::ToolSlowStart << End::Exits << 0 << QByteArray(kComplete) << true;
    QTest::newRow("no result") << Fault::ToolNoResult << End::Exits << 0 << QByteArray("100%") << true;
    QTest::newRow("fails") << Fault::ToolFails << End::Exits << 1 << QByteArray("success 0") << false;
    QTest::newRow("bare success") << Fault::ToolBareSuccess << End::Exits << 0 << QByteArray("success")
                                  << true;
    QTest::newRow("odd status") << Fault::ToolOddStatus << End::Exits << 0 << QByteArray("success x") << true;
    QTest::newRow("half lines") << Fault::ToolHalfLines << End::Exits << 0 << QByteArray(kComplete) << true;
    QTest::newRow("garbage") << Fault::ToolGarbage << End::Exits << 1 << QByteArray("nearly there, promise")
                             << false;
    QTest::newRow("huge file") << Fault::ToolHugeFile << End::Exits << 0 << QByteArray(kComplete) << true;
    QTest::newRow("chatty") << Fault::ToolChatty << End::Exits << 0 << QByteArray(kComplete) << true;
    QTest::newRow("stays after success")
        << Fault::ToolStaysAfterSuccess << End::Stands << 0 << QByteArray(kComplete) << true;
    QTest::newRow("damaged on the way")
        << Fault::DeviceDamagedTransfer << End::Exits << 1 << QByteArray("success 0") << false;
}

void RigToolTest::aFaultShowsInTheFileAndTheExit()
{
    QFETCH(Fault, fault);
    QFETCH(End, end);
    QFETCH(QByteArray, lastLine);
    m_faults->arm(fault, {{}, {}, 1});
    startFlashing(Chip::Pc);
    if (end == End::Stands) {
        QTRY_VERIFY_WITH_TIMEOUT(progress().endsWith(QByteArray(lastLine + '\n')), kPatience);
        QCOMPARE(m_tool->state(), QProcess::Running);
    } else {
        waitForEnd();
        QCOMPARE(m_tool->exitStatus(), end == End::Crashes ? QProcess::CrashExit : QProcess::NormalExit);
        if (end == End::Exits)
            QTEST(m_tool->exitCode(), "exitCode");
    }
    QCOMPARE(QFile::exists(m_sandbox->progressFile()), !lastLine.isNull());
    if (!lastLine.isEmpty())
        QCOMPARE(lines(progress()).last(), lastLine);
    else
        QVERIFY(progress().isEmpty());
    QFETCH(bool, flashed);
    QCOMPARE(m_device->flash(Chip::Pc) == m_image, flashed);
    QVERIFY(!m_faults->isArmed(fault));
}

void RigToolTest::standingPercentages_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("flashed");
    QTest::newRow("0 %") << Fault::ToolStallsAt0 << 0 << false;
    QTest::newRow("42 %") << Fault::ToolStallsAt42 << 42 << false;
    QTest::newRow("100 %, all written") << Fault::ToolStallsAt100 << 100 << true;
}

void RigToolTest::standingPercentages()
{
    QFETCH(Fault, fault);
    QFETCH(int, percent);
    QFETCH(bool, flashed);
    m_faults->arm(fault);
    startFlashing(Chip::Pc);
    QTRY_VERIFY_WITH_TIMEOUT(reaches(percent), kPatience);
    QTest::qWait(20000);
    QCOMPARE(m_tool->state(), QProcess::Running);
    QCOMPARE(lines(progress()).last(), QByteArray::number(percent) + '%');
    QCOMPARE(m_device->flash(Chip::Pc) == m_image, flashed);
}

void RigToolTest::askedToEndItEnds_data()
{
    QTest::addColumn<bool>("stubborn");
#ifndef Q_OS_WIN // there a program without a window cannot be asked
    QTest::newRow("a sound tool ends") << false;
#endif
    QTest::newRow("a stubborn tool goes on to the end") << true;
}

void RigToolTest::askedToEndItEnds()
{
    QFETCH(bool, stubborn);
    if (stubborn)
        m_faults->arm(Fault::ToolIgnoresTerminate);
    startFlashing(Chip::Pc);
    QTRY_VERIFY_WITH_TIMEOUT(reaches(10), kPatience);
    m_tool->terminate();
    waitForEnd();
    QCOMPARE(m_tool->exitStatus(), stubborn ? QProcess::NormalExit : QProcess::CrashExit);
    QCOMPARE(lines(progress()).last() == kComplete, stubborn);
}

void RigToolTest::aKilledToolLeavesABrick()
{
    startFlashing(Chip::Pc);
    QTRY_VERIFY_WITH_TIMEOUT(reaches(50), kPatience);
    m_tool->kill();
    waitForEnd();
    QTRY_VERIFY(!m_port->isFlashing());
    QVERIFY(!m_port->runs().first().finished);
    m_device->unplug(Chip::Pc);
    m_device->plug(Chip::Pc);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->interfaces().size(), 2, kPatience);
    QCOMPARE(m_device->interfaces().first().productId, 0x00FF);
}

void RigToolTest::aStandingToolEndsWithTheRig()
{
    m_faults->arm(Fault::ToolStallsAt42);
    startFlashing(Chip::Pc);
    QTRY_VERIFY_WITH_TIMEOUT(reaches(42), kPatience);
    m_port.reset();
    waitForEnd();
    QCOMPARE(m_tool->exitStatus(), QProcess::NormalExit);
}

void RigToolTest::theOldLinesOfAHugeFileComeFirst()
{
    m_faults->arm(Fault::ToolHugeFile);
    startFlashing(Chip::Pc);
    waitForEnd();
    QVERIFY(progress().size() > 4 * kMiB);
    QCOMPARE(percentages(progress()).size(), 101);
}

void RigToolTest::chatterGoesToTheOutput()
{
    m_faults->arm(Fault::ToolChatty);
    startFlashing(Chip::Pc);
    waitForEnd();
    QVERIFY(m_tool->readAllStandardOutput().size() > kMiB);
}

void RigToolTest::aFaultForOneChipSparesTheOther()
{
    m_faults->arm(Fault::ToolNoFile, {Chip::Otg, {}, 1});
    startFlashing(Chip::Pc);
    waitForEnd();
    QCOMPARE(lines(progress()).last(), QByteArray(kComplete));
    QVERIFY(m_faults->isArmed(Fault::ToolNoFile));
}

void RigToolTest::pullingTheCableEndsInFailure_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<int>("productId");
    QTest::newRow("while erasing") << Fault::DevicePulledAtErase << 0x00FF;
    QTest::newRow("at half of the image") << Fault::DevicePulledAtHalf << 0x00FF;
}

void RigToolTest::pullingTheCableEndsInFailure()
{
    QFETCH(Fault, fault);
    m_faults->arm(fault, {Chip::Pc, {}, 1});
    startFlashing(Chip::Pc);
    waitForEnd();
    QCOMPARE(lines(progress()).last(), QByteArray("success 0"));
    QVERIFY(!m_device->isPlugged(Chip::Pc));
    m_device->plug(Chip::Pc);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->interfaces().size(), 2, kPatience);
    QTEST(m_device->interfaces().first().productId, "productId");
}

void RigToolTest::aToolThatShouldUseUsbIsHungUpOn()
{
    m_port->takeGreetingsOnly();
    startFlashing(Chip::Pc);
    waitForEnd();
    QCOMPARE(progress(), QByteArray("0%\nsuccess 0\n"));
    QCOMPARE(m_port->runs().size(), 1);
    QCOMPARE(m_device->state(Chip::Pc), ChipState::Running);
}

void RigToolTest::nonsenseOnTheSocketIsHungUpOn_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("an unknown message") << QByteArray("flash everything\n");
    QTest::newRow("an empty line") << QByteArray("\n");
    QTest::newRow("a message without its words") << QByteArray("report\n");
    const QByteArray report = encode({BootLoaderCommand::Ready, {}}).toHex();
    QTest::newRow("a report before the greeting") << QByteArray("report " + report + '\n');
    QTest::newRow("a report one byte short") << QByteArray("hello 1\nreport " + report.chopped(2) + '\n');
    QTest::newRow("a report that is no number") << QByteArray("hello 1\nreport block\n");
    QTest::newRow("a second greeting") << QByteArray("hello 1\nhello 2\n");
    QTest::newRow("a line without an end") << QByteArray(100 * kKiB, 'x');
}

void RigToolTest::nonsenseOnTheSocketIsHungUpOn()
{
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    socket.connectToServer(qEnvironmentVariable(wire::kSocketVariable));
    QVERIFY(socket.waitForConnected());
    QSignalSpy disconnected(&socket, &QLocalSocket::disconnected);
    QFETCH(QByteArray, sent);
    socket.write(sent);
    QTRY_COMPARE_WITH_TIMEOUT(disconnected.size(), 1, kPatience);
}

QUILLON_TEST_CORE(RigToolTest)
#include "tst_rig_tool.moc"
