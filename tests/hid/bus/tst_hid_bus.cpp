// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The library as it ships, above devices that the system itself finds: they come, are served, and go. Each
// system brings its own TestedBus.h.
#include "TestedBus.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QtTest>

class HidBusTest : public TestedBus {
    Q_OBJECT

private Q_SLOTS:
    void identityIsListedAndOpens_data();
    void identityIsListedAndOpens();
    void everyByteGoesThrough_data();
    void everyByteGoesThrough();
    void burstKeepsItsOrder();
    void receiveThreadMayBeMadeAnew();
    void plugAndUnplugAreHeardOf();
    void unplugDuringAPendingReadIsALoss();
    void unplugBeforeAReportIsSentIsALoss();
    void deviceComesBack();
    void oneOfTwoDevicesIsOpen();
};

void HidBusTest::identityIsListedAndOpens_data()
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

void HidBusTest::identityIsListedAndOpens()
{
    QFETCH(int, productId);

    const auto device = bus().plug({0x352F, productId});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    QCOMPARE(recorder().productIds().last(), QList<int>{productId});
    QVERIFY(open(*device, productId));
    startThreads();
    QVERIFY(isServed(*device));
}

void HidBusTest::everyByteGoesThrough_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QByteArray>("answered");

    const auto padded = [](const QByteArray &start) { return start.leftJustified(65, '\0'); };
    QByteArray rising;
    for (int value = 0; value < 64; ++value)
        rising.append(char(value));
    QTest::newRow("question for the mode") << padded(QByteArray::fromHex("51c4090000040810"
                                                                         "17ff"))
                                           << padded(QByteArray::fromHex("51c40b00000408100000"
                                                                         "15ff"));
    QTest::newRow("zeros") << padded("\x51") << padded("\x51");
    QTest::newRow("ones") << QByteArray("\x51" + QByteArray(64, '\xFF'))
                          << QByteArray("\x51" + QByteArray(64, '\xFF'));
    QTest::newRow("rising bytes") << QByteArray("\x51" + rising) << QByteArray("\x51" + rising);
    QByteArray upper = rising;
    for (char &byte : upper)
        byte = char(byte | 0x80);
    QTest::newRow("the upper half") << QByteArray("\x51" + upper) << QByteArray("\x51" + rising);
    QTest::newRow("report IDs all along") << QByteArray(65, '\x51') << QByteArray(65, '\x51');
}

void HidBusTest::everyByteGoesThrough()
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
    QCOMPARE(device->written(), QList<QByteArray>{sent});
}

void HidBusTest::burstKeepsItsOrder()
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
    QCOMPARE(device->written(), sent);
    QCOMPARE(recorder().reports(), expected);
}

/// The system ends a read with the thread that began it; what comes while there is none is not lost.
void HidBusTest::receiveThreadMayBeMadeAnew()
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

/// The periodic scan, every 3 s while a device is open, would need far longer for as many changes.
void HidBusTest::plugAndUnplugAreHeardOf()
{
    constexpr int kChanges = 10;
    constexpr int kWithoutEventsMs = kChanges * 3000;
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);

    QElapsedTimer timer;
    timer.start();
    for (int change = 0; change < kChanges; change += 2) {
        const auto other = bus().plug({0x352F, 0x001F});
        QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path(), other->path()}), kPatienceMs);
        other->unplug();
        QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({device->path()}), kPatienceMs);
    }
    QVERIFY2(timer.elapsed() < kWithoutEventsMs / 2, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(manager().getConnected());
}

void HidBusTest::unplugDuringAPendingReadIsALoss()
{
    const auto device = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(open(*device), kPatienceMs);
    startThreads();
    QVERIFY(isServed(*device));
    QVERIFY(device->openHandles() > 0);

    device->unplug();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1}), kPatienceMs);
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE_WITH_TIMEOUT(device->openHandles(), 0, kPatienceMs);
    QVERIFY(!open(*device));

    // Two more scans have nothing to add.
    recorder().clear();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 2, kPatienceMs);
    QVERIFY(recorder().statuses().isEmpty());
    QVERIFY(lastScanFound({}));
}

void HidBusTest::unplugBeforeAReportIsSentIsALoss()
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

void HidBusTest::deviceComesBack()
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

void HidBusTest::oneOfTwoDevicesIsOpen()
{
    answerAsAPanel();
    auto first = bus().plug();
    QTRY_VERIFY_WITH_TIMEOUT(manager().getConnected(), kPatienceMs);
    const auto second = bus().plug({0x352F, 0x001F});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({first->path(), second->path()}), kPatienceMs);
    QVERIFY(!open(*second, 0x001F));
    QVERIFY(isServed(*first));
    QCOMPARE(second->openHandles(), 0);
    QVERIFY(second->written().isEmpty());

    first->unplug();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().statuses(), (QList<int>{0, 1, 0}), kPatienceMs);
    QVERIFY(isServed(*second));
    QTRY_COMPARE_WITH_TIMEOUT(first->openHandles(), 0, kPatienceMs);
}

QUILLON_TEST_CORE(HidBusTest)
#include "tst_hid_bus.moc"
