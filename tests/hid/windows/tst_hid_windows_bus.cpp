// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The library as it ships for Windows, on a bus that Windows itself looks after: which collections it lists,
// which it opens, what goes through, and how devices come and go.
#include "SystemBusTest.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <limits>
#include <vector>

class HidWindowsBusTest : public SystemBusTest {
    Q_OBJECT

private Q_SLOTS:
    void identityIsListedAndOpens_data();
    void identityIsListedAndOpens();
    void foreignDevicesAreNeitherListedNorOpened();
    void listWaitsForNoDeviceThatHangs();
    void collectionWithoutTheReportIdIsListedAndNotOpened();
    void collectionThatDoesNotTellItsReportsIsOpened();
    void failedListingIsNoLoss();
    void refusedDeviceIsOpenedByALaterScan();
    void everyByteGoesThrough_data();
    void everyByteGoesThrough();
    void burstKeepsItsOrder();
    void receiveThreadMayBeMadeAnew();
    void idleDeviceWakesNobody();
    void plugAndUnplugAreHeardOf();
    void unplugDuringAPendingReadIsALoss();
    void unplugBeforeAReportIsSentIsALoss();
    void deviceComesBack();
    void oneOfTwoDevicesIsOpen();
};

void HidWindowsBusTest::identityIsListedAndOpens_data()
{
    QTest::addColumn<int>("productId");
    QTest::newRow("R1, PC") << 0x0001;
    QTest::newRow("R1, PC boot loader") << 0x0010;
    QTest::newRow("R1, OTG and its boot loader") << 0x0012;
    QTest::newRow("R2, PC") << 0x000E;
    QTest::newRow("R2, PC boot loader") << 0x00FF;
    QTest::newRow("R2, OTG") << 0x001F;
    QTest::newRow("R2, OTG boot loader") << 0x0065;
}

void HidWindowsBusTest::identityIsListedAndOpens()
{
    QFETCH(int, productId);

    const auto device = bus().plug(productId);
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    QCOMPARE(recorder().productIds().last(), QList<int>{productId});
    QVERIFY(open(*device, productId));
    startThreads();
    QVERIFY(isServed(*device));
}

void HidWindowsBusTest::foreignDevicesAreNeitherListedNorOpened()
{
    std::vector<std::unique_ptr<SystemDevice>> foreign;
    for (int number = 0; number < 20; ++number)
        foreign.push_back(bus().plug(0x000E, number % 2 ? 0x046D : 0x352E));
    answerAsAPanel();
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    QVERIFY(!manager().openHIDHandle(foreign.front()->path(), 0x352E, 0x000E, 0));
    recorder().clear();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 2, kPatienceMs);
    QVERIFY(lastScanFound({device->path()}));

    qint64 quickest = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 20; ++round) {
        QElapsedTimer timer;
        timer.start();
        QStringList paths;
        QList<int> productIds;
        manager().getOrvikHIDListPath(paths, productIds);
        quickest = std::min(quickest, timer.nsecsElapsed());
        QCOMPARE(paths, QStringList{device->path()});
    }
    const QStringList opened = calls().takeOpened();
    qInfo("list beside twenty foreign devices: %.2f ms; opened %d times", double(quickest) / 1e6,
          int(opened.size()));
    QVERIFY(!opened.isEmpty());
    QCOMPARE(opened.count(device->path()), opened.size());
    QVERIFY(quickest < 100'000'000);
}

void HidWindowsBusTest::listWaitsForNoDeviceThatHangs()
{
    calls().setOpenHanging(true);
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    qint64 quickest = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 5; ++round) {
        QElapsedTimer timer;
        timer.start();
        QStringList paths;
        QList<int> productIds;
        manager().getOrvikHIDListPath(paths, productIds);
        quickest = std::min(quickest, timer.elapsed());
        QCOMPARE(paths, QStringList{device->path()});
    }
    QVERIFY2(quickest < 100, qPrintable(QString::number(quickest)));
    calls().setOpenHanging(false);
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
}

void HidWindowsBusTest::collectionWithoutTheReportIdIsListedAndNotOpened()
{
    const auto consumerControl = bus().plug(0x000E, 0x352F, 0x01);
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({consumerControl->path()}), kPatienceMs);
    QVERIFY(!open(*consumerControl));

    // Listed behind it, so that whoever opens the last one gets one that opens.
    answerAsAPanel();
    const auto device = bus().plug();
    const auto keyboard = bus().plug(0x000E, 0x352F, 0x02);
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({consumerControl->path(), keyboard->path(), device->path()}),
                             kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(recorder().lists().last().last(), device->path(), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
}

void HidWindowsBusTest::collectionThatDoesNotTellItsReportsIsOpened()
{
    calls().setReportsTold(false);
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    QVERIFY(open(*device));
    startThreads();
    QVERIFY(isServed(*device));
    calls().setReportsTold(true);
}

/// It knows of no unplug.
void HidWindowsBusTest::failedListingIsNoLoss()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    recorder().clear();
    {
        const LogCapture log;
        calls().setListingFailing(true);
        QTRY_COMPARE_WITH_TIMEOUT(log.lines().size(), 1, kPatienceMs);
        QVERIFY2(log.lines().first().contains(QLatin1String("does not list its devices")),
                 qPrintable(log.lines().first()));
        calls().setListingFailing(false);
    }
    QVERIFY(manager().getConnected());
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    QVERIFY(!recorder().lists().contains(QStringList()));
    QVERIFY(recorder().statuses().isEmpty());
    QVERIFY(isServed(*device));
}

/// No event tells of the change: the periodic scan has to find it.
void HidWindowsBusTest::refusedDeviceIsOpenedByALaterScan()
{
    calls().setOpenRefused(true);
    answerAsAPanel();
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().count(QStringList{device->path()}) >= 2, kPatienceMs);
    QVERIFY(!manager().getConnected());
    QVERIFY(recorder().statuses().isEmpty());
    calls().setOpenRefused(false);
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), QList<int>{0}, kPatienceMs);
}

void HidWindowsBusTest::everyByteGoesThrough_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QByteArray>("answered");

    const auto padded = [](const QByteArray &start) { return start.leftJustified(65, '\0'); };
    QByteArray rising;
    for (int value = 0; value < 64; ++value)
        rising.append(char(value));
    QTest::newRow("question for the mode") << padded(QByteArray::fromHex("51c409000004081017ff"))
                                           << padded(QByteArray::fromHex("51c40b0000040810000015ff"));
    QTest::newRow("zeros") << padded("\x51") << padded("\x51");
    QTest::newRow("ones") << QByteArray("\x51" + QByteArray(64, '\xFF'))
                          << QByteArray("\x51" + QByteArray(64, '\xFF'));
    QTest::newRow("rising bytes") << QByteArray("\x51" + rising) << QByteArray("\x51" + rising);
    QTest::newRow("report IDs all along") << QByteArray(65, '\x51') << QByteArray(65, '\x51');
}

void HidWindowsBusTest::everyByteGoesThrough()
{
    QFETCH(QByteArray, sent);
    QFETCH(QByteArray, answered);

    const auto device = bus().plug();
    device->setResponder([answered](const QByteArray &) { return QList<QByteArray>{answered}; });
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    manager().DC_AddSendData(sent);
    QTRY_COMPARE_WITH_TIMEOUT(recorder().reports().size(), 1, kPatienceMs);
    QCOMPARE(recorder().reports().first(), answered.sliced(1));
    QCOMPARE(device->heard(), QList<QByteArray>{sent});
}

void HidWindowsBusTest::burstKeepsItsOrder()
{
    const auto device = bus().plug();
    device->setResponder([](const QByteArray &asked) { return QList<QByteArray>{asked, asked}; });
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QList<QByteArray> sent;
    QList<QByteArray> expected;
    for (int mark = 0; mark < 30; ++mark) {
        sent.append(report(mark));
        expected.append({report(mark).sliced(1), report(mark).sliced(1)});
        manager().DC_AddSendData(sent.last());
    }
    QTRY_COMPARE_WITH_TIMEOUT(recorder().reports().size(), expected.size(), kPatienceMs);
    QCOMPARE(device->heard(), sent);
    QCOMPARE(recorder().reports(), expected);
}

/// The system ends a read with the thread that began it; what comes while there is none is not lost.
void HidWindowsBusTest::receiveThreadMayBeMadeAnew()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    for (int round = 0; round < 5; ++round) {
        QVERIFY(isServed(*device));
        manager().closeOrvikReceiveDataThread();
        const QByteArray unasked = report(1000 + round);
        device->send(unasked);
        manager().createOrvikReceiveDataThread();
        QTRY_COMPARE_WITH_TIMEOUT(recorder().reports().count(unasked.sliced(1)), 1, kPatienceMs);
    }
    QVERIFY(isServed(*device));
    QVERIFY(manager().getConnected());
}

/// Besides the scans, of which there is one in 3 s.
void HidWindowsBusTest::idleDeviceWakesNobody()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    recorder().clear();
    calls().takeWaits();
    calls().takeOpened();
    QTest::qWait(4000);
    const int scans = int(recorder().lists().size());
    QVERIFY2(scans <= 3, qPrintable(QString::number(scans)));
    // One wait follows each scan, and one each event that brought none.
    const int waits = calls().takeWaits();
    QVERIFY2(waits <= 2 * (scans + 1), qPrintable(QString::number(waits)));
    QCOMPARE(calls().takeOpened(), QStringList());
}

/// The periodic scan, every 3 s while a device is open, would need longer for as many arrivals and
/// departures.
void HidWindowsBusTest::plugAndUnplugAreHeardOf()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    std::vector<std::unique_ptr<SystemDevice>> others;
    QStringList paths{device->path()};
    QElapsedTimer timer;
    timer.start();
    constexpr int kArrivals = 6;
    for (int arrival = 0; arrival < kArrivals; ++arrival) {
        others.push_back(bus().plug(0x001F));
        paths.append(others.back()->path());
        QTRY_VERIFY_WITH_TIMEOUT(lastScanFound(paths), kPatienceMs);
    }
    // One after the other: of several that leave together Wine may keep some on its list.
    while (!others.empty()) {
        others.pop_back();
        paths.removeLast();
        QTRY_VERIFY_WITH_TIMEOUT(lastScanFound(paths), kPatienceMs);
    }
    QVERIFY2(timer.elapsed() < 2 * kArrivals * 3000 / 2, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(manager().getConnected());
}

void HidWindowsBusTest::unplugDuringAPendingReadIsALoss()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    device->unplug();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
    QVERIFY(!manager().getConnected());
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({}), kPatienceMs);
    QVERIFY(!open(*device));
    recorder().clear();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 2, kPatienceMs);
    QVERIFY(recorder().statuses().isEmpty());
}

void HidWindowsBusTest::unplugBeforeAReportIsSentIsALoss()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    manager().createOrvikSendDataThread();
    device->unplug();
    for (int mark = 0; mark < 5; ++mark)
        manager().DC_AddSendData(report(mark));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
    QVERIFY(!manager().getConnected());
}

void HidWindowsBusTest::deviceComesBack()
{
    answerAsAPanel();
    for (int round = 0; round < 4; ++round) {
        const auto device = bus().plug();
        QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
        QVERIFY(isServed(*device));
        QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), QList<int>{0}, kPatienceMs);
        device->unplug();
        QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
        recorder().clear();
    }
}

void HidWindowsBusTest::oneOfTwoDevicesIsOpen()
{
    answerAsAPanel();
    const auto first = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    const auto second = bus().plug(0x001F);
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({first->path(), second->path()}), kPatienceMs);
    QVERIFY(!open(*second, 0x001F));
    QVERIFY(isServed(*first));
    QVERIFY(second->heard().isEmpty());

    first->unplug();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1, 0}), kPatienceMs);
    QVERIFY(isServed(*second));
}

QUILLON_TEST_CORE(HidWindowsBusTest)
#include "tst_hid_windows_bus.moc"
