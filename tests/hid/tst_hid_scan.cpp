// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Runs with a sped-up clock and measures with the same clock: a period that did not follow it would be off by
// the speed's factor. A busy machine delays a thread as it likes, so whatever is measured is measured again
// until it is as it should be; what is wrong never gets there.
#include "ManagerTest.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <algorithm>
#include <chrono>
#include <optional>

using namespace std::chrono_literals;
using HIDCommunicator::HidDeviceInfo;

class HidScanTest : public ManagerTest {
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
    static constexpr std::chrono::milliseconds kTolerance{300};
    static constexpr int kPatienceMs = 20000;
    static constexpr int kAttempts = 10;
    void waitForQuietBus();
    static std::optional<std::chrono::milliseconds> latestPeriod();
    void comparePeriods(std::chrono::milliseconds expected);
};

/// Lets the scans that a plug, an opening or a start brought about pass by.
void HidScanTest::waitForQuietBus()
{
    const auto settled = [] {
        return !recorder().lists().isEmpty()
            && Recorder::Clock::now() - recorder().listTimes().last() > 400ms;
    };
    QTRY_VERIFY_WITH_TIMEOUT(settled(), kPatienceMs);
    recorder().clear();
}

/// The middle one of the last five periods; nothing while there are fewer.
std::optional<std::chrono::milliseconds> HidScanTest::latestPeriod()
{
    constexpr int kPeriods = 5;
    const auto times = recorder().listTimes();
    if (times.size() <= kPeriods)
        return std::nullopt;
    QList<Recorder::Clock::duration> periods;
    for (qsizetype i = times.size() - kPeriods; i < times.size(); ++i)
        periods.append(times.at(i) - times.at(i - 1));
    std::sort(periods.begin(), periods.end());
    return std::chrono::duration_cast<std::chrono::milliseconds>(periods.at(kPeriods / 2));
}

void HidScanTest::comparePeriods(std::chrono::milliseconds expected)
{
    const auto isAsExpected = [&] {
        const auto period = latestPeriod();
        return period && std::chrono::abs(*period - expected) < kTolerance;
    };
    const bool reached = QTest::qWaitFor(isAsExpected, 10 * kPatienceMs);
    QVERIFY2(reached, qPrintable(QString::number(latestPeriod().value_or(0ms).count())));
}

void HidScanTest::periodDependsOnAnOpenDevice_data()
{
    QTest::addColumn<bool>("opened");
    QTest::addColumn<int>("period");

    QTest::newRow("device attached, not open") << false << 1000;
    QTest::newRow("device open") << true << 3000;
}

void HidScanTest::periodDependsOnAnOpenDevice()
{
    QFETCH(bool, opened);
    QFETCH(int, period);

    const QString path = bus().plug(kProductId);
    if (opened)
        QVERIFY(open(path));
    waitForQuietBus();
    comparePeriods(std::chrono::milliseconds(period));
}

void HidScanTest::periodShortensWhenTheDeviceGoes()
{
    QVERIFY(!connectDevice().isEmpty());
    waitForQuietBus();
    bus().failNextWrites(1);
    manager().DC_AddSendData(report(1));
    QTRY_COMPARE_WITH_TIMEOUT(recorder().count(1), 1, kPatienceMs);
    recorder().clear();
    comparePeriods(1000ms);
}

/// How long it takes until \a happened.
template <typename Condition> static std::chrono::milliseconds timeUntil(Condition happened)
{
    const auto start = Recorder::Clock::now();
    if (!QTest::qWaitFor(happened, 20000))
        return std::chrono::milliseconds::max();
    return std::chrono::duration_cast<std::chrono::milliseconds>(Recorder::Clock::now() - start);
}

void HidScanTest::plugAndUnplugAreAnnouncedAtOnce()
{
    QVERIFY(!connectDevice().isEmpty());
    auto plugged = std::chrono::milliseconds::max();
    auto unplugged = plugged;
    for (int attempt = 0; attempt < kAttempts && std::max(plugged, unplugged) >= 1s; ++attempt) {
        waitForQuietBus();
        const QString path = bus().plug(kOtherProductId);
        const auto isListed
            = [&] { return !recorder().lists().isEmpty() && recorder().lists().last().contains(path); };
        plugged = std::min(plugged, timeUntil(isListed));
        waitForQuietBus();
        bus().unplug(kOtherProductId);
        const auto isNotListed = [&] { return !recorder().lists().isEmpty() && !isListed(); };
        unplugged = std::min(unplugged, timeUntil(isNotListed));
    }
    QVERIFY2(plugged < 1s, qPrintable(QString::number(plugged.count())));
    QVERIFY2(unplugged < 1s, qPrintable(QString::number(unplugged.count())));
}

void HidScanTest::everyAcquireIsFollowedByAScan()
{
    QVERIFY(!connectDevice().isEmpty());
    auto scanned = std::chrono::milliseconds::max();
    for (int attempt = 0; attempt < kAttempts && scanned >= 1s; ++attempt) {
        waitForQuietBus();
        manager().acquire();
        scanned = std::min(scanned, timeUntil([] { return !recorder().lists().isEmpty(); }));
        manager().release();
    }
    QVERIFY2(scanned < 1s, qPrintable(QString::number(scanned.count())));
}

void HidScanTest::slotsConnectedAfterAcquireMissNothing()
{
    bus().plug(kProductId);
    auto heard = std::chrono::milliseconds::max();
    for (int attempt = 0; attempt < kAttempts && heard >= 400ms; ++attempt) {
        manager().release();
        manager().acquire();
        // A host that is slow to come back to its event loop. The first periodic scan is still to come.
        QThread::msleep(500);
        const Recorder &late = alsoListen(Qt::QueuedConnection);
        heard = std::min(heard, timeUntil([&] { return !late.lists().isEmpty(); }));
    }
    QVERIFY2(heard < 400ms, qPrintable(QString::number(heard.count())));
}

void HidScanTest::listHoldsTheFamilyOnly_data()
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

void HidScanTest::listHoldsTheFamilyOnly()
{
    QFETCH(QList<int>, family);
    QFETCH(QList<int>, foreign);

    for (const int vendorId : std::as_const(foreign))
        bus().plugDevice({QStringLiteral("foreign%1 vid_352f&pid_000e").arg(vendorId), vendorId, 0x000E});
    QStringList paths;
    for (const int productId : std::as_const(family))
        paths.append(bus().plug(productId, int(paths.size())));

    // A scan that began before the last of them was plugged in may still be announced.
    waitForQuietBus();
    QTRY_VERIFY_WITH_TIMEOUT(!recorder().lists().isEmpty(), kPatienceMs);
    QCOMPARE(recorder().lists().last(), paths);
    QCOMPARE(recorder().productIds().last(), family);

    QStringList listed{QStringLiteral("left over")};
    QList<int> listedIds{-1};
    manager().getOrvikHIDListPath(listed, listedIds);
    QCOMPARE(listed, paths);
    QCOMPARE(listedIds, family);
}

void HidScanTest::listIsRepeatedWithoutAnyChange()
{
    const QString path = bus().plug(kProductId);
    waitForQuietBus();
    QTRY_VERIFY_WITH_TIMEOUT(recorder().lists().size() >= 3, kPatienceMs);
    QCOMPARE(recorder().lists().mid(0, 3), (QList<QStringList>{{path}, {path}, {path}}));
}

void HidScanTest::noScanAfterTheLastRelease()
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

QUILLON_TEST_CORE(HidScanTest)
#include "tst_hid_scan.moc"
