// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What is asked of Windows' HID collections, whom, and how long a list waits for it.
#include "HidCollections.h"
#include "InterfaceName.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;
using namespace HIDCommunicator;

namespace {

const QString kFamily = u"\\\\?\\HID#VID_352F&PID_000E&MI_03&Col02#8&1a2b&0&0001#{4d1e55b2}"_s;
const QString kMouse = u"\\\\?\\HID#VID_352F&PID_000E&MI_03&Col01#8&1a2b&0&0000#{4d1e55b2}"_s;
const QString kForeign = u"\\\\?\\HID#VID_046D&PID_000E&MI_03#8&1a2b&0&%1#{4d1e55b2}"_s;

/// Stands in for the system. Who is asked what is written down.
struct FakeSystem {
    std::mutex mutex;
    std::optional<QStringList> interfaces = QStringList{kFamily, kMouse};
    QStringList asked;
    bool tells = true;
    std::atomic<bool> hangs = false;
    std::atomic<int> hanging = 0;

    HidCollections::Sources sources()
    {
        return {[this] { return interfaces; }, [this](const QString &path) { return reports(path); }};
    }

    std::optional<CollectionReports> reports(const QString &path)
    {
        {
            const std::lock_guard lock(mutex);
            asked.append(path);
        }
        ++hanging;
        while (hangs)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        --hanging;
        if (!tells)
            return std::nullopt;
        return path == kFamily ? CollectionReports{{0x51}, {0x51}} : CollectionReports{{0x01}, {}};
    }

    QStringList takeAsked()
    {
        const std::lock_guard lock(mutex);
        QStringList taken = std::exchange(asked, {});
        taken.sort();
        return taken;
    }
};

QStringList paths(const std::optional<QList<HidDeviceInfo>> &devices)
{
    QStringList result;
    for (const HidDeviceInfo &device : devices.value_or(QList<HidDeviceInfo>()))
        result.append(device.path);
    return result;
}

const QStringList kUsableLast{kMouse.toLower(), kFamily.toLower()};

} // namespace

class HidListingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nameTellsWhoIsBehindIt_data();
    void nameTellsWhoIsBehindIt();
    void foreignCollectionsAreNotAsked();
    void eachIsAskedOnce();
    void oneThatDoesNotTellIsAskedAgain();
    void allAreAskedAnewWhenTheBusHasChanged();
    void oneThatHangsHoldsNobodyUp();
    void failedListingIsNotAnEmptyOne();
};

void HidListingTest::nameTellsWhoIsBehindIt_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("vendorId");
    QTest::addColumn<int>("productId");
    constexpr int kNobody = -1;
    QTest::newRow("one of several collections") << kFamily << 0x352F << 0x000E;
    QTest::newRow("the only one of an interface")
        << uR"(\\?\hid#vid_352f&pid_001f&mi_00#1298&0000&0&0#{4d1e55b2})"_s << 0x352F << 0x001F;
    QTest::newRow("the only interface")
        << uR"(\\?\hid#vid_352f&pid_00ff#7&77#{4d1e55b2})"_s << 0x352F << 0x00FF;
    QTest::newRow("over Bluetooth")
        << uR"(\\?\hid#{00001124-0000-1000-8000-00805f9b34fb}_vid&0002352f_pid&000e#8)"_s << kNobody
        << kNobody;
    QTest::newRow("on another bus") << uR"(\\?\hid#acpi0011#4&1)"_s << kNobody << kNobody;
    QTest::newRow("not a HID interface") << uR"(\\?\usb#vid_352f&pid_000e#1)"_s << kNobody << kNobody;
    QTest::newRow("a longer product ID") << uR"(\\?\hid#vid_352f&pid_000e1#1)"_s << kNobody << kNobody;
    QTest::newRow("cut short") << uR"(\\?\hid#vid_352f&pid_000e)"_s << kNobody << kNobody;
    QTest::newRow("something before it") << u"x"_s + kFamily << kNobody << kNobody;
    QTest::newRow("nothing") << QString() << kNobody << kNobody;
}

void HidListingTest::nameTellsWhoIsBehindIt()
{
    QFETCH(QString, name);
    QFETCH(int, vendorId);
    QFETCH(int, productId);
    const auto device = deviceNamed(name);
    QCOMPARE(device ? device->vendorId : -1, vendorId);
    QCOMPARE(device ? device->productId : -1, productId);
    QCOMPARE(device ? device->path : name, name);
}

void HidListingTest::foreignCollectionsAreNotAsked()
{
    FakeSystem system;
    for (int number = 0; number < 20; ++number)
        system.interfaces->append(kForeign.arg(number));
    HidCollections collections(system.sources());
    QCOMPARE(paths(collections.list(0x352F)), kUsableLast);
    QCOMPARE(system.takeAsked(), (QStringList{kMouse, kFamily}));
}

void HidListingTest::eachIsAskedOnce()
{
    FakeSystem system;
    HidCollections collections(system.sources());
    collections.list(0x352F);
    system.takeAsked();
    QCOMPARE(paths(collections.list(0x352F)), kUsableLast);
    QCOMPARE(system.takeAsked(), QStringList());

    // Whoever was gone is a stranger.
    system.interfaces = QStringList{kMouse};
    QCOMPARE(paths(collections.list(0x352F)), QStringList{kMouse.toLower()});
    system.interfaces = QStringList{kFamily, kMouse};
    QCOMPARE(paths(collections.list(0x352F)), kUsableLast);
    QCOMPARE(system.takeAsked(), QStringList{kFamily});
}

void HidListingTest::oneThatDoesNotTellIsAskedAgain()
{
    FakeSystem system;
    system.tells = false;
    HidCollections collections(system.sources());
    QCOMPARE(paths(collections.list(0x352F)), (QStringList{kFamily.toLower(), kMouse.toLower()}));
    system.tells = true;
    QCOMPARE(paths(collections.list(0x352F)), kUsableLast);
}

void HidListingTest::allAreAskedAnewWhenTheBusHasChanged()
{
    FakeSystem system;
    HidCollections collections(system.sources());
    collections.list(0x352F);
    system.takeAsked();
    collections.forget();
    QCOMPARE(paths(collections.list(0x352F)), kUsableLast);
    QCOMPARE(system.takeAsked(), (QStringList{kMouse, kFamily}));
}

void HidListingTest::oneThatHangsHoldsNobodyUp()
{
    FakeSystem system;
    system.hangs = true;
    HidCollections collections(system.sources());
    // The quickest of several: a busy machine takes its time to come back to us.
    qint64 quickest = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 5; ++round) {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(collections.list(0x352F)->size(), 2);
        quickest = std::min(quickest, timer.elapsed());
        collections.forget();
    }
    QVERIFY2(quickest < 100, qPrintable(QString::number(quickest)));
    QCOMPARE(system.hanging.load(), 2); // however often the bus has changed
    system.hangs = false;
    QTRY_COMPARE(system.hanging.load(), 0);
    QTRY_COMPARE(paths(collections.list(0x352F)), kUsableLast);
}

void HidListingTest::failedListingIsNotAnEmptyOne()
{
    FakeSystem system;
    HidCollections collections(system.sources());
    system.interfaces.reset();
    QVERIFY(!collections.list(0x352F));
    system.interfaces = QStringList();
    QVERIFY(collections.list(0x352F));
    QCOMPARE(collections.list(0x352F)->size(), 0);
}

QUILLON_TEST_CORE(HidListingTest)
#include "tst_hid_listing.moc"
