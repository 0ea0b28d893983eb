// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "ManagerTest.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <functional>

class HidLossTest : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void deviceThatLeavesBeforeItIsOpenIsNotOpened_data();
    void deviceThatLeavesBeforeItIsOpenIsNotOpened();
    void lossIsAnnouncedOnceAndTheDeviceComesBack_data();
    void lossIsAnnouncedOnceAndTheDeviceComesBack();
    void otherDeviceLeavingIsNoLoss();
    void busThatCannotBeLookedAtIsNoLoss();
    void disconnectedDeviceLeavingIsNoLoss();
    void connectedIsFalseWhenTheLossIsAnnounced();
    void nothingOpensBeforeTheLossIsDelivered();
    void panelThatWasBusyKeepsItsThreads();
    void lossBeforeTheReleaseIsForgotten();

private:
    void checkRoundTrip();
    void answerAsAPanel();
};

/// That the open device is served in both directions.
void HidLossTest::checkRoundTrip()
{
    bus().setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked}; });
    recorder().clear();
    manager().DC_AddSendData(report(77));
    QTRY_VERIFY(recorder().reports().contains(report(77).sliced(1)));
}

/// The recorder does what a panel does: opens what it finds, closes the threads of what has gone.
void HidLossTest::answerAsAPanel()
{
    Recorder::Hooks hooks;
    hooks.onList = [](const QStringList &paths) {
        if (!paths.isEmpty() && !manager().getConnected() && open(paths.last()))
            startThreads();
    };
    hooks.onStatus = &Recorder::closeThreadsOfLostDevice;
    listen(Qt::QueuedConnection, hooks);
}

void HidLossTest::deviceThatLeavesBeforeItIsOpenIsNotOpened_data()
{
    QTest::addColumn<bool>("duringOpen");
    QTest::newRow("before the open") << false;
    QTest::newRow("during the open") << true;
}

void HidLossTest::deviceThatLeavesBeforeItIsOpenIsNotOpened()
{
    QFETCH(bool, duringOpen);

    const QString path = bus().plug(kProductId);
    QTRY_VERIFY(!recorder().lists().isEmpty() && recorder().lists().last() == QStringList{path});
    if (duringOpen)
        bus().setOpenHooks([] { bus().unplugAll(); });
    else
        bus().unplugAll();
    QVERIFY(!open(path));
    startThreads();
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(recorder().lists().last(), QStringList());
    QVERIFY(recorder().statuses().isEmpty());

    bus().setOpenHooks({});
    QVERIFY(!connectDevice().isEmpty());
    checkRoundTrip();
}

using Moment = std::function<void()>;

void HidLossTest::lossIsAnnouncedOnceAndTheDeviceComesBack_data()
{
    QTest::addColumn<Moment>("beforeOpening");
    QTest::addColumn<Moment>("afterOpening");

    const Moment nothing = [] {};
    const Moment unplug = [] { bus().unplugAll(); };
    const auto unplugInsteadOfReply = [](int question) {
        return [question] {
            bus().setResponder([question](const QByteArray &asked) {
                if (asked.at(2) == question)
                    bus().unplugAll();
                return QList<QByteArray>{asked};
            });
        };
    };

    QTest::newRow("before the handle is returned")
        << Moment([] { bus().setOpenHooks({}, [] { bus().unplugAll(); }); }) << nothing;
    QTest::newRow("before the threads are started") << nothing << unplug;
    QTest::newRow("right before the threads are started") << nothing << Moment([] {
        bus().unplugAll();
        startThreads();
    });
    QTest::newRow("with the send thread alone") << nothing << Moment([] {
        manager().createOrvikSendDataThread();
        bus().unplugAll();
    });
    QTest::newRow("with the receive thread alone") << nothing << Moment([] {
        manager().createOrvikReceiveDataThread();
        bus().unplugAll();
    });
    QTest::newRow("while both are idle") << nothing << Moment([] {
        startThreads();
        bus().unplugAll();
    });
    QTest::newRow("between request and reply") << Moment(unplugInsteadOfReply(5)) << Moment([] {
        startThreads();
        manager().DC_AddSendData(report(5));
    });
    QTest::newRow("in the middle of a burst out") << Moment(unplugInsteadOfReply(20)) << Moment([] {
        for (char mark = 0; mark < 60; ++mark)
            manager().DC_AddSendData(report(mark));
        startThreads();
    });
    QTest::newRow("in the middle of a burst in") << nothing << Moment([] {
        startThreads();
        for (char mark = 0; mark < 100; ++mark)
            bus().queueReport(report(mark));
        bus().unplugAll();
    });
    QTest::newRow("a write fails, the device stays") << Moment([] { bus().failNextWrites(1); }) << Moment([] {
        startThreads();
        manager().DC_AddSendData(report(1));
    });
    QTest::newRow("the threads are closed right after it") << nothing << Moment([] {
        startThreads();
        bus().unplugAll();
        manager().closeOrvikSendDataThread();
        manager().closeOrvikReceiveDataThread();
    });
    QTest::newRow("it comes back under its old path at once") << nothing << Moment([] {
        startThreads();
        bus().unplugAll();
        bus().plug(kProductId);
    });
    QTest::newRow("one of two devices") << Moment([] { bus().plug(kOtherProductId); }) << Moment([] {
        startThreads();
        bus().unplug(kProductId);
    });
}

void HidLossTest::lossIsAnnouncedOnceAndTheDeviceComesBack()
{
    QFETCH(Moment, beforeOpening);
    QFETCH(Moment, afterOpening);

    const QString path = bus().plug(kProductId);
    beforeOpening();
    QVERIFY(open(path));
    afterOpening();
    QTRY_COMPARE(recorder().count(1), 1);
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(bus().openConnections(), 0);

    // Back again under another path; nothing of the first connection is in its way.
    bus().clear();
    bus().unplugAll();
    const QString again = bus().plug(kProductId, 1);
    QTRY_VERIFY(!recorder().lists().isEmpty() && recorder().lists().last() == QStringList{again});
    QCOMPARE(recorder().statuses(), (QList<int>{0, 1}));
    QTRY_VERIFY(open(again));
    startThreads();
    checkRoundTrip();
    QVERIFY(manager().getConnected());
    QCOMPARE(recorder().count(1), 0);
}

void HidLossTest::otherDeviceLeavingIsNoLoss()
{
    bus().plug(kOtherProductId);
    QVERIFY(!connectDevice().isEmpty());
    QTRY_COMPARE(recorder().statuses(), QList<int>{0});
    recorder().clear();
    bus().unplug(kOtherProductId);
    QTRY_VERIFY(!recorder().lists().isEmpty() && recorder().lists().last().size() == 1);
    QVERIFY(manager().getConnected());
    QVERIFY(recorder().statuses().isEmpty());
    checkRoundTrip();
}

/// Nothing is announced of such a look, neither a loss nor an empty list.
void HidLossTest::busThatCannotBeLookedAtIsNoLoss()
{
    const QString path = connectDevice();
    QVERIFY(!path.isEmpty());
    const LogCapture log;
    bus().refuseListing(true);
    bus().plug(kOtherProductId);
    QTRY_COMPARE(log.lines().size(), 1); // and the looks after it add none
    QCoreApplication::processEvents();
    recorder().clear();
    QStringList paths{path};
    QList<int> productIds{kProductId};
    manager().getOrvikHIDListPath(paths, productIds);
    QVERIFY(paths.isEmpty() && productIds.isEmpty());
    QVERIFY(manager().getConnected());
    checkRoundTrip();
    QVERIFY(recorder().lists().isEmpty());

    bus().refuseListing(false);
    bus().unplug(kOtherProductId);
    QTRY_VERIFY(!recorder().lists().isEmpty());
    QCOMPARE(recorder().lists().last(), QStringList{path});
    QVERIFY(recorder().statuses().isEmpty());
    QVERIFY(manager().getConnected());
    QCOMPARE(log.lines().size(), 1);
}

void HidLossTest::disconnectedDeviceLeavingIsNoLoss()
{
    QVERIFY(!connectDevice().isEmpty());
    QVERIFY(manager().disconnectDevice(0));
    bus().unplugAll();
    QTRY_COMPARE(recorder().statuses(), QList<int>{0});
    recorder().clear();
    QTRY_VERIFY(!recorder().lists().isEmpty() && recorder().lists().last().isEmpty());
    QCOMPARE(recorder().statuses(), QList<int>());
}

void HidLossTest::connectedIsFalseWhenTheLossIsAnnounced()
{
    std::atomic<int> connectedAtLoss{-1};
    Recorder::Hooks hooks;
    hooks.onStatus = [&](int status) {
        if (status == 1)
            connectedAtLoss = manager().getConnected();
    };
    const HookGuard guard(listen(Qt::DirectConnection, hooks));
    QVERIFY(!connectDevice().isEmpty());
    bus().unplugAll();
    QTRY_COMPARE(connectedAtLoss.load(), 0);
}

/// Blocks the application's event loop until \a happened, as a host does that is busy with something else.
static bool waitWithoutEventLoop(const std::function<bool()> &happened)
{
    const QDeadlineTimer deadline(5000);
    while (!happened() && !deadline.hasExpired())
        QThread::msleep(1);
    return happened();
}

void HidLossTest::nothingOpensBeforeTheLossIsDelivered()
{
    const Recorder &direct = alsoListen(Qt::DirectConnection);
    const QString path = connectDevice();
    QTRY_COMPARE(recorder().count(0), 1);
    bus().unplugAll();
    QVERIFY(waitWithoutEventLoop([&] { return direct.count(1) == 1; }));
    bus().plug(kProductId);
    QVERIFY(!manager().getConnected());
    QVERIFY(!open(path));
    recorder().clear();
    QTRY_VERIFY(open(path));
    QCOMPARE(recorder().statuses().value(0, -1), 1);
    startThreads();
    checkRoundTrip();
}

void HidLossTest::panelThatWasBusyKeepsItsThreads()
{
    answerAsAPanel();
    Recorder &direct = alsoListen(Qt::DirectConnection);
    bus().plug(kProductId);
    QTRY_VERIFY(manager().getConnected());
    QTRY_COMPARE(recorder().count(0), 1);
    direct.clear();

    // Scans, loss and return all wait in the panel's event queue, the list with the device before the loss.
    bus().plug(kOtherProductId);
    QVERIFY(waitWithoutEventLoop([&] { return !direct.lists().isEmpty(); }));
    bus().unplugAll();
    QVERIFY(waitWithoutEventLoop([&] { return direct.count(1) == 1; }));
    bus().plug(kProductId);
    QTRY_VERIFY(manager().getConnected());
    QTRY_COMPARE(recorder().count(0), 2);
    checkRoundTrip();
}

void HidLossTest::lossBeforeTheReleaseIsForgotten()
{
    const QString path = connectDevice();
    QTRY_COMPARE(recorder().count(0), 1);
    bus().unplugAll();
    manager().release();
    manager().acquire();
    // Opened without the event loop: what was lost before the release is no obstacle.
    bus().plug(kProductId);
    QVERIFY(open(path));
    startThreads();
    checkRoundTrip();
}

QUILLON_TEST_CORE(HidLossTest)
#include "tst_hid_loss.moc"
