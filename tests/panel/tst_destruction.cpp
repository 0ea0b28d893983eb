// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// How a panel goes down: its steps and their order, the time it may take, the tool that runs, the library's
// link.
#include "tests/panel/PanelTest.h"
#include "tests/support/DeviceReplies.h"
#include "tests/support/FakeFlashingTool.h"
#include "tests/support/HidCalls.h"
#include "tests/support/LogHook.h"
#include "tests/support/Processes.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <optional>

using namespace Qt::StringLiterals;
using HIDCommunicator::OrvikHIDManager;
using namespace std::chrono_literals;

namespace {
const QString kFirstLine = u"[Destructor] Starting cleanup..."_s;
const QString kLastLine = u"[Destructor] Cleanup completed"_s;

/// Two passes of 100 ms, 300 ms for the tool to hear, and what it takes to kill it.
#ifdef Q_OS_WIN
constexpr qint64 kLimit = 1000;
#else
constexpr qint64 kLimit = 1300; // a tool may be slow to go, and a neighbour needs the processor
#endif

/// Posts itself an event for every one that it gets.
class EndlessPoster : public QObject {
public:
    EndlessPoster() { post(); }
    int delivered = 0;

protected:
    void customEvent(QEvent *) override
    {
        ++delivered;
        post();
    }

private:
    void post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }
};
} // namespace

class DestructionTest : public PanelTest {
    Q_OBJECT

private slots:
    void linesAndReleaseStandInOrder();
    void pendingEventsAreDeliveredBeforeTheRelease();
    void eventsOfTheReleaseAreDeliveredBeforeTheEnd();
    void eventsWithoutEndDoNotHoldItUp();
    void childrenAreStillThereWhileEventsAreDelivered();

    void nothingReachesADyingPanel_data();
    void nothingReachesADyingPanel();
    void aPendingReportDoesNotMakeItWaitForTheServer();
    void runningTimersStop_data();
    void runningTimersStop();

    void runningToolEnds_data();
    void runningToolEnds();
    void toolThatHasEndedIsLeftAlone();

    void openDeviceIsClosed();
    void theOtherPanelKeepsTheDevice();
    void missingPartsAreNoProblem_data();
    void missingPartsAreNoProblem();

private:
    /// Deletes the panel; how many milliseconds that took.
    qint64 deletePanel();
};

qint64 DestructionTest::deletePanel()
{
    QElapsedTimer timer;
    timer.start();
    stage().panel.reset();
    return timer.elapsed();
}

void DestructionTest::linesAndReleaseStandInOrder()
{
    stage().log.clear();
    deletePanel();

    QCOMPARE(stage().log.lines(), QStringList({kFirstLine, u"hid: release()"_s, kLastLine}));
}

void DestructionTest::pendingEventsAreDeliveredBeforeTheRelease()
{
    QStringList order;
    HidCalls::after(u"release"_s, [&order] { order.append(u"released"_s); });
    QMetaObject::invokeMethod(
        this, [&order] { order.append(u"delivered"_s); }, Qt::QueuedConnection);

    deletePanel();
    QCOMPARE(order, QStringList({u"delivered"_s, u"released"_s}));
}

void DestructionTest::eventsOfTheReleaseAreDeliveredBeforeTheEnd()
{
    bool isDelivered = false;
    std::optional<bool> deliveredAtTheEnd;
    HidCalls::after(u"release"_s, [&] {
        QMetaObject::invokeMethod(
            this, [&isDelivered] { isDelivered = true; }, Qt::QueuedConnection);
    });
    const LogHook atTheEnd(kLastLine, [&](const QString &) { deliveredAtTheEnd = isDelivered; });

    deletePanel();
    QCOMPARE(deliveredAtTheEnd, std::optional<bool>(true));
}

void DestructionTest::eventsWithoutEndDoNotHoldItUp()
{
    const EndlessPoster poster;

    const qint64 elapsed = deletePanel();
    QVERIFY2(elapsed < 600, qPrintable(QString::number(elapsed))); // two passes of at most 100 ms
    QVERIFY(poster.delivered > 0);
}

void DestructionTest::childrenAreStillThereWhileEventsAreDelivered()
{
    const QPointer<QObject> child = panel().findChild<QObject *>(u"m_closeBtn"_s);
    QVERIFY(child);
    int deliveredWithChild = 0;
    const auto look = [&] { deliveredWithChild += child ? 1 : 0; };
    QMetaObject::invokeMethod(this, look, Qt::QueuedConnection);
    HidCalls::after(u"release"_s, [&] { QMetaObject::invokeMethod(this, look, Qt::QueuedConnection); });

    deletePanel();
    QCOMPARE(deliveredWithChild, 2);
    QVERIFY(!child);
}

void DestructionTest::nothingReachesADyingPanel_data()
{
    using Action = std::function<void()>;
    QTest::addColumn<Action>("emitSignal");
    QTest::addColumn<QString>("reaction");
    QTest::newRow("the library announces devices")
        << Action([] { Q_EMIT OrvikHIDManager::instance()->deviceListChanged({}, {}); })
        << u"[ConnectingR2]"_s;
    QTest::newRow("the library hands over a report")
        << Action([] { Q_EMIT OrvikHIDManager::instance()->blockReceiveData(DeviceReplies::mode(0)); })
        << u"[HID接收]"_s;
    QTest::newRow("the library tells of a connection")
        << Action([] { Q_EMIT OrvikHIDManager::instance()->blockHidConnetStatus(0); }) << u"[状态]"_s;
    QTest::newRow("a download ends") << Action([] {
        Q_EMIT networking_class::getInstance()->network_finish_download();
    }) << u"========####enter onFirmwareDownloaded"_s;
}

void DestructionTest::nothingReachesADyingPanel()
{
    QFETCH(std::function<void()>, emitSignal);
    QFETCH(QString, reaction);
    panel().listenForImages();
    const auto reactions = [&] { return stage().log.startingWith(reaction).size(); };
    emitSignal();
    QTRY_VERIFY(reactions() > 0); // it reaches a living panel
    stage().log.clear();

    HidCalls::after(u"release"_s, emitSignal);
    const LogHook atTheStart(kFirstLine, [&](const QString &) {
        QMetaObject::invokeMethod(this, emitSignal, Qt::QueuedConnection);
    });
    deletePanel();
    QCOMPARE(reactions(), 0);
}

void DestructionTest::aPendingReportDoesNotMakeItWaitForTheServer()
{
    stage().server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::silence());
    Q_EMIT OrvikHIDManager::instance()->blockReceiveData(DeviceReplies::pcVersion({1, 2, 3}));

    const qint64 elapsed = deletePanel();
    QVERIFY2(elapsed < kLimit, qPrintable(QString::number(elapsed)));
}

void DestructionTest::runningTimersStop_data()
{
    QTest::addColumn<bool>("isPoll");
    QTest::newRow("the poll") << true;
    QTest::newRow("the watchdog") << false;
}

void DestructionTest::runningTimersStop()
{
    QFETCH(bool, isPoll);
    QTimer *timer = isPoll ? panel().pollTimer() : panel().watchdog();
    QSignalSpy timeouts(timer, &QTimer::timeout);
    std::optional<bool> runsAtRelease;
    timer->start(1ms);
    HidCalls::after(u"release"_s, [&] { runsAtRelease = timer->isActive(); });
    stage().log.clear();

    deletePanel();
    QCOMPARE(runsAtRelease, std::optional<bool>(false));
    QCOMPARE(stage().log.startingWith(u"[状态]"_s), QStringList());
}

void DestructionTest::runningToolEnds_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<int>("atLeast");
    QTest::newRow("a tool that ends when asked is asked")
        << QByteArray("write 1%\nhang") << exitCodeOfAskedProgram() << 0;
    QTest::newRow("a tool that does not hear is given 300 ms, then killed")
        << QByteArray("ignore-terminate\nwrite 1%\nhang") << exitCodeOfKilledProgram() << 290;
    QTest::newRow("a tool that talks all the time")
        << QByteArray("ignore-terminate\nwrite 1%\nchatter 1000000\nhang") << exitCodeOfKilledProgram()
        << 290;
}

void DestructionTest::runningToolEnds()
{
    QFETCH(QByteArray, script);
    QFETCH(int, atLeast);
    FakeFlashingTool tool;
    tool.obeys(script);
    QDir().mkpath(QFileInfo(stage().sandbox.progressFile()).path());
    panel().tool()->start(FakeFlashingTool::path(), {});
    // It has come as far as the script's first report.
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(stage().sandbox.progressFile()), 20000);
    const qint64 processId = panel().tool()->processId();
    QSignalSpy finished(panel().tool(), &QProcess::finished);

    const qint64 elapsed = deletePanel();
    QVERIFY2(elapsed >= atLeast && elapsed < kLimit, qPrintable(QString::number(elapsed)));
    QCOMPARE(finished.count(), 1);
    QTEST(finished.at(0).at(0).toInt(), "exitCode");
    QVERIFY2(!isProcessAlive(processId), "the tool is still there");
    QVERIFY(stage().log.startingWith(u"QProcess: Destroyed while process"_s).isEmpty()); // it was the panel's
                                                                                         // doing
}

void DestructionTest::toolThatHasEndedIsLeftAlone()
{
    FakeFlashingTool tool;
    tool.obeys("exit 0");
    panel().tool()->start(FakeFlashingTool::path(), {});
    QVERIFY(panel().tool()->waitForFinished());

    const qint64 elapsed = deletePanel();
    QVERIFY2(elapsed < 290, qPrintable(QString::number(elapsed)));
}

void DestructionTest::openDeviceIsClosed()
{
    const QString path = PanelStage::bus().plug(0x000E);
    panel().seeDevices({path}, {0x000E});
    QCOMPARE(PanelStage::bus().openConnections(), 1);

    deletePanel();
    QTRY_COMPARE(PanelStage::bus().openConnections(), 0); // the threads may need a moment to close it
    QVERIFY(!OrvikHIDManager::instance()->getConnected());
}

void DestructionTest::theOtherPanelKeepsTheDevice()
{
    const OpenPanel other;
    const QString path = PanelStage::bus().plug(0x000E);
    panel().seeDevices({path}, {0x000E});

    deletePanel();
    QCOMPARE(PanelStage::bus().openConnections(), 1);
    stage().log.clear();
    PanelStage::bus().setResponder(DeviceReplies::device({1, 2, 3}, {1, 2, 4}));
    QTRY_COMPARE(other.deviceVersion(Chip::Otg), u"1.2.4"_s); // its query of half a second gets through
}

void DestructionTest::missingPartsAreNoProblem_data()
{
    using Removal = std::function<void(OpenPanel &)>;
    QTest::addColumn<Removal>("removePart");
    QTest::addColumn<int>("releases");
    QTest::newRow("library") << Removal([](auto &panel) { panel.lose(Part::Library); }) << 0;
    QTest::newRow("bar") << Removal([](auto &panel) { panel.lose(Part::Bar); }) << 1;
    QTest::newRow("poll") << Removal([](auto &panel) { panel.lose(Part::Poll); }) << 1;
    QTest::newRow("watchdog") << Removal([](auto &panel) { panel.lose(Part::Watchdog); }) << 1;
    QTest::newRow("process") << Removal([](auto &panel) { panel.lose(Part::Tool); }) << 1;
}

void DestructionTest::missingPartsAreNoProblem()
{
    QFETCH(std::function<void(OpenPanel &)>, removePart);
    removePart(panel());
    stage().log.clear();

    deletePanel();
    QTEST(stage().log.count(u"hid: release()"_s), "releases");
    QVERIFY(stage().log.contains(kLastLine));
}

QUILLON_TEST(DestructionTest)
#include "tst_destruction.moc"
