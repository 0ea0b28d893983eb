// Runs with a sped-up clock and measures with the same clock: a period that did not follow it would be off by
// the speed's factor.
#include "ManagerTest.h"

#include <QtTest>

#include <algorithm>

using namespace std::chrono_literals;
using HIDCommunicator::HidDeviceInfo;

class TestHidScan : public ManagerTest {
    Q_OBJECT

private Q_SLOTS:
    void periodDependsOnAnOpenDevice_data();
    void periodDependsOnAnOpenDevice();
    void periodShortensWhenTheDeviceGoes();
    void plugAndUnplugAreAnnouncedAtOnce();
    void everyAcquireIsFollowedByAScan();
    void slotsConnectedAfterAcquireMissNothing();
    void listHoldsTheFamilyOnly_data();
    void listHoldsTheFamilyOnly();
    void listIsRepeatedWithoutAnyChange();
    void noScanAfterTheLastRelease();

private:
    static constexpr qint64 kToleranceMs = 300;
    static constexpr int kPatienceMs = 20000;
    void waitForQuietBus();
    void comparePeriods(std::chrono::milliseconds expected);
};

/// Lets the scans that a plug, an opening or a start brought about pass by.
void TestHidScan::waitForQuietBus()
{
    const auto settled = [] {
        return !recorder().lists().isEmpty()
            && Recorder::Clock::now() - recorder().listTimes().last() > 400ms;
    };
    QTRY_VERIFY_WITH_TIMEOUT(settled(), kPatienceMs);
    recorder().clear();
}

void TestHidScan::comparePeriods(std::chrono::milliseconds expected)
{
    QTRY_COMPARE_WITH_TIMEOUT(recorder().lists().size(), 6, 2 * kPatienceMs);
    const auto times = recorder().listTimes();
    QList<qint64> periods;
    for (qsizetype i = 1; i < times.size(); ++i)
        periods.append(
            std::chrono::duration_cast<std::chrono::milliseconds>(times.at(i) - times.at(i - 1)).count());
    std::sort(periods.begin(), periods.end());
    // The middle one: a single scan may come late on a busy machine.
    const qint64 median = periods.at(periods.size() / 2);
    QVERIFY2(qAbs(median - expected.count()) < kToleranceMs, qPrintable(QString::number(median)));
}

void TestHidScan::periodDependsOnAnOpenDevice_data()
{
    QTest::addColumn<bool>("opened");
    QTest::addColumn<int>("period");

    QTest::newRow("device attached, not open") << false << 1000;
    QTest::newRow("device open") << true << 3000;
}

void TestHidScan::periodDependsOnAnOpenDevice()
{
    QFETCH(bool, opened);
    QFETCH(int, period);

    const QString path = bus().plug(kProductId);
    if (opened)
        QVERIFY(open(path));
    waitForQuietBus();
    comparePeriods(std::chrono::milliseconds(period));
}

void TestHidScan::periodShortensWhenTheDeviceGoes()
{
    QVERIFY(!connectDevice().isEmpty());
    waitForQuietBus();
    bus().failNextWrites(1);
    manager().DC_AddSendData(report(1));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().count(1), 1, kPatienceMs);
    recorder().clear();
    comparePeriods(1000ms);
}

void TestHidScan::plugAndUnplugAreAnnouncedAtOnce()
{
    QVERIFY(!connectDevice().isEmpty());
    waitForQuietBus();

    auto before = Recorder::Clock::now();
    const QString path = bus().plug(kOtherProductId);
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() == 1 && recorder().lists().last().contains(path),
                             kPatienceMs);
    QVERIFY(recorder().listTimes().last() - before < 1s);

    before = Recorder::Clock::now();
    bus().unplug(kOtherProductId);
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() == 2 && !recorder().lists().last().contains(path),
                             kPatienceMs);
    QVERIFY(recorder().listTimes().last() - before < 1s);
}

void TestHidScan::everyAcquireIsFollowedByAScan()
{
    QVERIFY(!connectDevice().isEmpty());
    waitForQuietBus();
    const auto before = Recorder::Clock::now();
    manager().acquire();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().lists().size(), 1, kPatienceMs);
    QVERIFY(recorder().listTimes().last() - before < 1s);
    manager().release();
}

void TestHidScan::slotsConnectedAfterAcquireMissNothing()
{
    manager().release();
    bus().plug(kProductId);
    manager().acquire();
    // A host that is slow to come back to its event loop. The first periodic scan is still to come.
    QThread::msleep(500);
    const Recorder &late = alsoListen(Qt::QueuedConnection);
    const auto connected = Recorder::Clock::now();
    QTRY_VERIFY_WITH_TIMEOUT(!late.lists().isEmpty(), kPatienceMs);
    QVERIFY(late.listTimes().first() - connected < 400ms);
}

void TestHidScan::listHoldsTheFamilyOnly_data()
{
    QTest::addColumn<QList<int>>("family");
    QTest::addColumn<QList<int>>("foreign");

    QTest::newRow("nothing") << QList<int>() << QList<int>();
    QTest::newRow("foreign devices only") << QList<int>() << QList<int>{0x046D, 0x1234};
    QTest::newRow("one of the family") << QList<int>{0x000E} << QList<int>();
    QTest::newRow("two chips of one device") << QList<int>{0x000E, 0x001F} << QList<int>();
    QTest::newRow("both models, all identities among foreign devices")
        << QList<int>{0x0001, 0x0010, 0x0012, 0x000E, 0x00FF, 0x001F, 0x0065} << QList<int>{0x046D, 0x0001};
    QTest::newRow("two devices of one kind") << QList<int>{0x000E, 0x000E} << QList<int>{0x352E};
}

void TestHidScan::listHoldsTheFamilyOnly()
{
    QFETCH(QList<int>, family);
    QFETCH(QList<int>, foreign);

    for (const int vendorId : std::as_const(foreign))
        bus().plugDevice({QStringLiteral("foreign%1 vid_352f&pid_000e").arg(vendorId), vendorId, 0x000E});
    QStringList paths;
    for (const int productId : std::as_const(family))
        paths.append(bus().plug(productId, int(paths.size())));

    recorder().clear();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 2, kPatienceMs);
    QCOMPARE(recorder().lists().last(), paths);
    QCOMPARE(recorder().productIds().last(), family);

    QStringList listed{QStringLiteral("left over")};
    QList<int> listedIds{-1};
    manager().getOrvikHIDListPath(listed, listedIds);
    QCOMPARE(listed, paths);
    QCOMPARE(listedIds, family);
}

void TestHidScan::listIsRepeatedWithoutAnyChange()
{
    const QString path = bus().plug(kProductId);
    waitForQuietBus();
    QTRY_COMPARE_WITH_TIMEOUT(recorder().lists().size(), 3, kPatienceMs);
    QCOMPARE(recorder().lists(), (QList<QStringList>{{path}, {path}, {path}}));
}

void TestHidScan::noScanAfterTheLastRelease()
{
    waitForQuietBus();
    manager().release();
    QCoreApplication::processEvents();
    recorder().clear();
    bus().plug(kProductId);
    QTest::qWait(4000);
    QVERIFY(recorder().lists().isEmpty());
    manager().acquire();
    QTRY_VERIFY_WITH_TIMEOUT(!recorder().lists().isEmpty(), kPatienceMs);
}

QTEST_GUILESS_MAIN(TestHidScan)
#include "tst_hid_scan.moc"
