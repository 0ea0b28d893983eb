// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "Hang.h"
#include "ManagerTest.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <thread>

class HidOpenTest : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void pathIsTakenInAnySpelling_data();
    void pathIsTakenInAnySpelling();
    void otherPathsAreRefused_data();
    void otherPathsAreRefused();
    void refusedDeviceOpensLater();
    void openingAnnouncesStatusZeroOnce();
    void onlyOneDeviceIsOpen();
    void openingAgainIsNoSecondHandle();
    void disconnectedDeviceOpensAgainAtOnce();
    void handleThatIsStillInUseKeepsTheNextOneOut();
    void secondOpeningMeanwhileIsRefused();
    void releaseDuringOpeningWins();
};

void HidOpenTest::pathIsTakenInAnySpelling_data()
{
    QTest::addColumn<QString>("announced");
    QTest::addColumn<QString>("asked");

    const QString lower = ScriptedBus::pathFor(kProductId);
    QTest::newRow("as announced") << lower << lower;
    QTest::newRow("upper case for an announced lower case") << lower << lower.toUpper();
    QTest::newRow("lower case for an announced upper case") << lower.toUpper() << lower;
}

void HidOpenTest::pathIsTakenInAnySpelling()
{
    QFETCH(QString, announced);
    QFETCH(QString, asked);

    bus().plugPath(announced, kProductId);
    QVERIFY(open(asked));
    QVERIFY(manager().getConnected());
    QCOMPARE(bus().opened(), QStringList{announced});
}

void HidOpenTest::otherPathsAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("vendorId");
    QTest::addColumn<int>("productId");

    const QString path = ScriptedBus::pathFor(kProductId);
    QTest::newRow("empty path") << QString() << kVendorId << kProductId;
    QTest::newRow("not attached") << ScriptedBus::pathFor(kProductId, 1) << kVendorId << kProductId;
    QTest::newRow("part of the path") << path.chopped(1) << kVendorId << kProductId;
    QTest::newRow("another vendor") << path << 0x046D << kProductId;
    QTest::newRow("another product") << path << kVendorId << kOtherProductId;
    QTest::newRow("no IDs") << path << 0 << 0;
    QTest::newRow("negative IDs") << path << -1 << -1;
    QTest::newRow("a million characters") << QString(1'000'000, u'\\') << kVendorId << kProductId;
}

void HidOpenTest::otherPathsAreRefused()
{
    QFETCH(QString, path);
    QFETCH(int, vendorId);
    QFETCH(int, productId);

    bus().plug(kProductId);
    QVERIFY(!manager().openHIDHandle(path, vendorId, productId, 0));
    QVERIFY(!manager().getConnected());
    QVERIFY(open(ScriptedBus::pathFor(kProductId)));
    QTRY_COMPARE(recorder().statuses(), QList<int>{0});
}

void HidOpenTest::refusedDeviceOpensLater()
{
    bus().refuseOpen(true);
    const QString path = bus().plug(kProductId);
    Recorder::Hooks hooks;
    hooks.onList = [](const QStringList &paths) {
        if (!manager().getConnected() && !paths.isEmpty() && open(paths.first()))
            startThreads();
    };
    listen(Qt::QueuedConnection, hooks);
    QTRY_VERIFY(recorder().lists().size() >= 2);
    QVERIFY(!manager().getConnected());
    QVERIFY(recorder().statuses().isEmpty());

    bus().refuseOpen(false);
    QTRY_VERIFY(manager().getConnected());
    QCOMPARE(bus().opened(), QStringList{path});
}

void HidOpenTest::openingAnnouncesStatusZeroOnce()
{
    QVERIFY(!connectDevice().isEmpty());
    QTRY_COMPARE(recorder().statuses(), QList<int>{0});
    recorder().clear();
    bus().plug(kOtherProductId);
    QTRY_VERIFY(!recorder().lists().isEmpty());
    QVERIFY(recorder().statuses().isEmpty());
}

void HidOpenTest::onlyOneDeviceIsOpen()
{
    const QString first = connectDevice();
    const QString second = bus().plug(kOtherProductId);
    QVERIFY(!open(second, kOtherProductId));
    QCOMPARE(bus().opened(), QStringList{first});
    QVERIFY(manager().getConnected());

    // The first one is still the one that is served.
    manager().DC_AddSendData(report(1));
    QTRY_COMPARE(bus().written().size(), 1);
    QVERIFY(manager().disconnectDevice(0));
    QVERIFY(open(second, kOtherProductId));
    QCOMPARE(bus().opened(), (QStringList{first, second}));
    QCOMPARE(bus().openConnections(), 1);
}

void HidOpenTest::openingAgainIsNoSecondHandle()
{
    const QString path = connectDevice();
    QVERIFY(open(path));
    QVERIFY(open(path.toUpper()));
    QCOMPARE(bus().opened().size(), 1);
    QTRY_COMPARE(recorder().statuses(), QList<int>{0});
}

void HidOpenTest::disconnectedDeviceOpensAgainAtOnce()
{
    const QString path = connectDevice();
    for (int round = 0; round < 5; ++round) {
        manager().closeOrvikSendDataThread();
        manager().closeOrvikReceiveDataThread();
        QVERIFY(manager().disconnectDevice(0));
        QVERIFY(!manager().getConnected());
        QCOMPARE(bus().openConnections(), 0);

        QVERIFY(open(path));
        startThreads();
        manager().DC_AddSendData(report(char(round)));
        QTRY_COMPARE(bus().written().size(), round + 1);
        bus().queueReport(report(char(round)));
        QTRY_COMPARE(recorder().reports().size(), round + 1);
    }
    QTRY_COMPARE(recorder().statuses(), (QList<int>{0, 0, 0, 0, 0, 0}));
}

void HidOpenTest::handleThatIsStillInUseKeepsTheNextOneOut()
{
    Hang hang;
    bus().setResponder([&](const QByteArray &) {
        hang.passBy();
        return QList<QByteArray>();
    });
    const QString path = connectDevice();
    hang.arm();
    manager().DC_AddSendData(report(1));
    QTRY_VERIFY(hang.isAsExpected());

    QVERIFY(manager().disconnectDevice(0));
    QVERIFY(!open(path));
    QCOMPARE(bus().openConnections(), 1);
    hang.disarm();
    bus().setResponder({});
    QTRY_VERIFY(open(path));
    QCOMPARE(bus().openConnections(), 1);
    startThreads();
    manager().DC_AddSendData(report(2));
    QTRY_COMPARE(bus().written().size(), 2);
}

void HidOpenTest::secondOpeningMeanwhileIsRefused()
{
    const QString path = bus().plug(kProductId);
    bool second = true;
    bus().setOpenHooks([&] {
        bus().setOpenHooks({});
        second = open(path);
    });
    QVERIFY(open(path));
    QVERIFY(!second);
    QCOMPARE(bus().opened().size(), 1);
}

void HidOpenTest::releaseDuringOpeningWins()
{
    const QString path = bus().plug(kProductId);
    bus().setOpenHooks([&] { std::thread([] { manager().release(); }).join(); });
    QVERIFY(!open(path));
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(bus().openConnections(), 0);
}

QUILLON_TEST_CORE(HidOpenTest)
#include "tst_hid_open.moc"
