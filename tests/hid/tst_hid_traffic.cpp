// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "ManagerTest.h"

#include "tests/support/LogCapture.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

class HidTrafficTest : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void reportsGoOutInOrder();
    void queuedReportsWaitForTheSendThread();
    void queueDropsTheOldestWhenFull_data();
    void queueDropsTheOldestWhenFull();
    void lastReleaseForgetsTheQueue();
    void shortReportsArePadded_data();
    void shortReportsArePadded();
    void reportsNobodyCouldTakeAreNotQueued_data();
    void reportsNobodyCouldTakeAreNotQueued();
    void failedWriteEndsTheConnectionAndRequeuesNothing();
    void receivedReportsAreStripped_data();
    void receivedReportsAreStripped();
    void receivedReportsKeepTheirOrder();
    void closedThreadsAreSilent();
    void repliesReachTheAsker();

private:
    static QList<char> marks(const QList<QByteArray> &reports, int offset);
};

/// The byte behind the start mark of each report.
QList<char> HidTrafficTest::marks(const QList<QByteArray> &reports, int offset)
{
    QList<char> marks;
    for (const QByteArray &report : reports)
        marks.append(report.at(offset));
    return marks;
}

void HidTrafficTest::reportsGoOutInOrder()
{
    QVERIFY(!connectDevice().isEmpty());
    QList<char> expected;
    for (char mark = 0; mark < 50; ++mark) {
        manager().DC_AddSendData(report(mark));
        expected.append(mark);
    }
    QTRY_COMPARE(bus().written().size(), expected.size());
    QCOMPARE(marks(bus().written(), 2), expected);
}

void HidTrafficTest::queuedReportsWaitForTheSendThread()
{
    for (char mark = 1; mark <= 3; ++mark)
        manager().DC_AddSendData(report(mark));
    const QString path = bus().plug(kProductId);
    QVERIFY(open(path));
    manager().createOrvikReceiveDataThread();
    manager().DC_AddSendData(report(4));
    recorder().clear();
    bus().queueReport(report(9));
    QTRY_COMPARE(recorder().reports().size(), 1);
    QVERIFY(bus().written().isEmpty());

    manager().createOrvikSendDataThread();
    QTRY_COMPARE(marks(bus().written(), 2), (QList<char>{1, 2, 3, 4}));

    // The same again over a disconnection.
    manager().closeOrvikSendDataThread();
    manager().DC_AddSendData(report(5));
    QVERIFY(manager().disconnectDevice(0));
    manager().DC_AddSendData(report(6));
    QVERIFY(open(path));
    startThreads();
    QTRY_COMPARE(marks(bus().written(), 2), (QList<char>{1, 2, 3, 4, 5, 6}));
}

void HidTrafficTest::queueDropsTheOldestWhenFull_data()
{
    QTest::addColumn<int>("queued");
    QTest::addColumn<int>("dropped");

    QTest::newRow("63 fit") << 63 << 0;
    QTest::newRow("64 fit") << 64 << 0;
    QTest::newRow("65 are one too many") << 65 << 1;
    QTest::newRow("100") << 100 << 36;
}

void HidTrafficTest::queueDropsTheOldestWhenFull()
{
    QFETCH(int, queued);
    QFETCH(int, dropped);

    const LogCapture log;
    for (int i = 0; i < queued; ++i)
        manager().DC_AddSendData(report(char(i)));
    QCOMPARE(log.count(QStringLiteral("[HID] send queue full, oldest report dropped")), dropped);
    QVERIFY(!connectDevice().isEmpty());
    QTRY_COMPARE(bus().written().size(), queued - dropped);
    for (int i = dropped; i < queued; ++i)
        QCOMPARE(bus().written().at(i - dropped), report(char(i)));
}

void HidTrafficTest::lastReleaseForgetsTheQueue()
{
    manager().DC_AddSendData(report(1));
    manager().release();
    manager().acquire();
    QVERIFY(!connectDevice().isEmpty());
    manager().DC_AddSendData(report(2));
    QTRY_VERIFY(!bus().written().isEmpty());
    QCOMPARE(marks(bus().written(), 2), QList<char>{2});
}

void HidTrafficTest::shortReportsArePadded_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 2, 10, 64, 65})
        QTest::addRow("%d bytes", size) << size;
}

void HidTrafficTest::shortReportsArePadded()
{
    QFETCH(int, size);

    const QByteArray sent = QByteArray(1, 0x51) + QByteArray(size - 1, char(0xFF));
    QVERIFY(!connectDevice().isEmpty());
    manager().DC_AddSendData(sent);
    QTRY_COMPARE(bus().written().size(), 1);
    QCOMPARE(bus().written().first(), sent + QByteArray(65 - size, '\0'));
}

void HidTrafficTest::reportsNobodyCouldTakeAreNotQueued_data()
{
    QTest::addColumn<QByteArray>("refused");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("66 bytes") << report(1, 66);
    QTest::newRow("a megabyte") << report(1, 1 << 20);
    QTest::newRow("without report ID") << QByteArray::fromHex("c409");
    QTest::newRow("another report ID") << QByteArray(65, '\x01');
}

void HidTrafficTest::reportsNobodyCouldTakeAreNotQueued()
{
    QFETCH(QByteArray, refused);

    QVERIFY(!connectDevice().isEmpty());
    const LogCapture log;
    manager().DC_AddSendData(refused);
    QCOMPARE(
        log.lines(),
        QStringList{
            QStringLiteral("[HID] not a report of the device, not queued: %1 bytes").arg(refused.size())});
    manager().DC_AddSendData(report(7));
    QTRY_COMPARE(bus().written(), QList<QByteArray>{report(7)});
}

void HidTrafficTest::failedWriteEndsTheConnectionAndRequeuesNothing()
{
    const QString path = bus().plug(kProductId);
    QVERIFY(open(path));
    for (char mark = 1; mark <= 3; ++mark)
        manager().DC_AddSendData(report(mark));
    bus().failNextWrites(1);
    startThreads();
    QTRY_COMPARE(recorder().statuses(), (QList<int>{0, 1}));
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(bus().openConnections(), 0);
    QVERIFY(bus().written().isEmpty());

    QTRY_VERIFY(open(path));
    startThreads();
    QTRY_COMPARE(marks(bus().written(), 2), (QList<char>{2, 3}));
}

void HidTrafficTest::receivedReportsAreStripped_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QList<QByteArray>>("received");

    const auto passedOn = [](const QByteArray &sent) { return QList<QByteArray>{sent.sliced(1)}; };
    for (const int size : {2, 10, 64, 65, 66, 4096}) {
        const QByteArray sent = QByteArray::fromHex("51c4") + QByteArray(size - 2, '\x07');
        QTest::addRow("%d bytes", size) << sent << passedOn(sent);
    }
    QTest::newRow("report ID alone") << QByteArray(1, 0x51) << QList<QByteArray>{QByteArray()};
    QTest::newRow("no bytes") << QByteArray() << QList<QByteArray>();
    QTest::newRow("another report ID") << QByteArray(65, '\x01') << QList<QByteArray>();
    QTest::newRow("no report ID") << QByteArray::fromHex("c40b00000408100000") << QList<QByteArray>();
}

void HidTrafficTest::receivedReportsAreStripped()
{
    QFETCH(QByteArray, sent);
    QFETCH(QList<QByteArray>, received);

    QVERIFY(!connectDevice().isEmpty());
    bus().queueReport(sent);
    bus().queueReport(report(9));
    received.append(report(9).sliced(1));
    QTRY_COMPARE(recorder().reports().size(), received.size());
    QCOMPARE(recorder().reports(), received);
}

void HidTrafficTest::receivedReportsKeepTheirOrder()
{
    QVERIFY(!connectDevice().isEmpty());
    QList<char> expected;
    for (char mark = 0; mark < 100; ++mark) {
        bus().queueReport(report(mark));
        expected.append(mark);
    }
    QTRY_COMPARE(recorder().reports().size(), expected.size());
    QCOMPARE(marks(recorder().reports(), 1), expected);
}

void HidTrafficTest::closedThreadsAreSilent()
{
    QVERIFY(!connectDevice().isEmpty());
    manager().closeOrvikSendDataThread();
    manager().closeOrvikReceiveDataThread();
    QVERIFY(manager().getConnected());
    manager().DC_AddSendData(report(1));
    bus().queueReport(report(2));
    QTest::qWait(200);
    QVERIFY(bus().written().isEmpty());
    QVERIFY(recorder().reports().isEmpty());

    startThreads();
    QTRY_COMPARE(bus().written().size(), 1);
    QTRY_COMPARE(recorder().reports().size(), 1);
}

void HidTrafficTest::repliesReachTheAsker()
{
    bus().setResponder([](const QByteArray &asked) {
        return QList<QByteArray>{report(asked.at(2)), report(char(asked.at(2) + 100))};
    });
    QVERIFY(!connectDevice().isEmpty());
    manager().DC_AddSendData(report(1));
    manager().DC_AddSendData(report(2));
    QTRY_COMPARE(marks(recorder().reports(), 1), (QList<char>{1, 101, 2, 102}));
}

QUILLON_TEST_CORE(HidTrafficTest)
#include "tst_hid_traffic.moc"
