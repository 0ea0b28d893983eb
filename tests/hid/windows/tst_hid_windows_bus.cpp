// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The library as it ships for Windows, on a bus that Windows itself looks after: which collections it lists,
// and which it opens.
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
    void foreignDevicesAreNeitherListedNorOpened();
    void listWaitsForNoDeviceThatHangs();
    void collectionWithoutTheReportIdIsListedAndNotOpened();
    void collectionThatDoesNotTellItsReportsIsOpened();
    void failedListingIsNoLoss();
    void refusedDeviceIsOpenedByALaterScan();
    void idleDeviceWakesNobody();
};

void HidWindowsBusTest::foreignDevicesAreNeitherListedNorOpened()
{
    std::vector<std::unique_ptr<SystemDevice>> foreign;
    for (int number = 0; number < 20; ++number)
        foreign.push_back(bus().plug({number % 2 ? 0x046D : 0x352E}));
    answerAsAPanel();
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    QVERIFY(isServed(*device));
    QVERIFY(!manager().openHIDHandle(foreign.front()->path(), 0x352E, 0x000E, 0));
    recorder().clear();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 2, kPatienceMs);
    QVERIFY(lastScanFound({device->path()}));

    // Besides what the system's own list takes, which is Wine's.
    qint64 quickest = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 20; ++round) {
        QElapsedTimer timer;
        timer.start();
        calls().takeListingTime();
        QStringList paths;
        QList<int> productIds;
        manager().getOrvikHIDListPath(paths, productIds);
        quickest = std::min(quickest, timer.nsecsElapsed() - qint64(calls().takeListingTime().count()));
        QCOMPARE(paths, QStringList{device->path()});
    }
    const QStringList opened = calls().takeOpened();
    qInfo("list beside twenty foreign devices: %.2f ms beyond the system's; opened %d times",
          double(quickest) / 1e6, int(opened.size()));
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
    const auto consumerControl = bus().plug({0x352F, 0x000E, 0x01});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({consumerControl->path()}), kPatienceMs);
    QVERIFY(!open(*consumerControl));

    // Listed behind it, so that whoever opens the last one gets one that opens.
    answerAsAPanel();
    const auto device = bus().plug();
    const auto keyboard = bus().plug({0x352F, 0x000E, 0x02});
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

QUILLON_TEST_CORE(HidWindowsBusTest)
#include "tst_hid_windows_bus.moc"
