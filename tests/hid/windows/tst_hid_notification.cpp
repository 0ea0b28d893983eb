// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the system tells of devices that come and go, on a system that tells it, does not, or tells it at a
// bad moment.
#include "tests/support/TestProgram.h"
#include "windows/ConfigurationManager.h"
#include "windows/DeviceNotification.h"

#include <QElapsedTimer>
#include <QTest>

#include <hidclass.h>

#include <atomic>
#include <optional>
#include <thread>

using namespace HIDCommunicator;
using namespace std::chrono_literals;

namespace {
constexpr GUID kHidInterfaces{0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};
constexpr DWORD kQueryRemove = 2;

/// Stands in for the configuration manager, of which a process has one.
struct FakeManager {
    DWORD answer = ERROR_SUCCESS;
    std::optional<NotificationFilter> filter;
    void *context = nullptr;
    NotificationCallback callback = nullptr;
    std::atomic<int> unsubscribed = 0;
    std::thread sender; ///< its last notification is delivered before the subscription ends
    std::atomic<bool> isSending = false;

    void tell(DWORD action) const { callback(handle(), context, action, nullptr, 0); }
    static NotificationHandle handle();
} manager;

NotificationHandle FakeManager::handle()
{
    return &manager;
}

DWORD WINAPI subscribe(NotificationFilter *filter, void *context, NotificationCallback callback,
                       NotificationHandle *handle)
{
    manager.filter = *filter;
    manager.context = context;
    manager.callback = callback;
    // A failing call may leave anything here.
    *handle = FakeManager::handle();
    return manager.answer;
}

DWORD WINAPI unsubscribe(NotificationHandle)
{
    manager.isSending = false;
    if (manager.sender.joinable())
        manager.sender.join();
    ++manager.unsubscribed;
    return ERROR_SUCCESS;
}

const NotificationFunctions kFunctions{&subscribe, &unsubscribe};
} // namespace

Q_DECLARE_METATYPE(NotificationFunctions)

class HidNotificationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void asksForHidInterfaces();
    void wakesForArrivalAndRemoval_data();
    void wakesForArrivalAndRemoval();
    void aNotificationBeforeTheWaitIsNotLost();
    void waitsAndIsInterruptedWithoutNotifications_data();
    void waitsAndIsInterruptedWithoutNotifications();
    void notificationsUntilTheVeryEndDoNoHarm();
};

void HidNotificationTest::init()
{
    manager.answer = ERROR_SUCCESS;
    manager.filter.reset();
    manager.unsubscribed = 0;
}

void HidNotificationTest::asksForHidInterfaces()
{
    {
        const DeviceNotification notification(kFunctions);
        QVERIFY(manager.filter);
        QCOMPARE(manager.filter->size, DWORD(416));
        QCOMPARE(manager.filter->type, kFilterByDeviceInterface);
        QVERIFY(IsEqualGUID(manager.filter->of.interfaceClass, kHidInterfaces));
        QCOMPARE(manager.unsubscribed.load(), 0);
    }
    QCOMPARE(manager.unsubscribed.load(), 1);
}

void HidNotificationTest::wakesForArrivalAndRemoval_data()
{
    QTest::addColumn<unsigned long>("action");
    QTest::addColumn<bool>("wakes");
    QTest::newRow("arrival") << kInterfaceArrival << true;
    QTest::newRow("removal") << kInterfaceRemoval << true;
    QTest::newRow("a question") << kQueryRemove << false;
}

void HidNotificationTest::wakesForArrivalAndRemoval()
{
    QFETCH(unsigned long, action);
    QFETCH(bool, wakes);
    DeviceNotification notification(kFunctions);
    std::thread teller([&] {
        Sleep(30);
        manager.tell(action);
    });
    QCOMPARE(notification.wait(wakes ? 10s : 200ms), wakes);
    teller.join();
}

void HidNotificationTest::aNotificationBeforeTheWaitIsNotLost()
{
    DeviceNotification notification(kFunctions);
    manager.tell(kInterfaceArrival);
    QVERIFY(notification.wait(0ms));
    QVERIFY(!notification.wait(0ms)); // it is told once
}

void HidNotificationTest::waitsAndIsInterruptedWithoutNotifications_data()
{
    QTest::addColumn<NotificationFunctions>("functions");
    QTest::addColumn<unsigned long>("answer");
    QTest::newRow("a system without the functions") << NotificationFunctions{} << 0UL;
    QTest::newRow("a subscription that fails") << kFunctions << 0x33UL;
}

void HidNotificationTest::waitsAndIsInterruptedWithoutNotifications()
{
    QFETCH(NotificationFunctions, functions);
    QFETCH(unsigned long, answer);
    manager.answer = answer;
    {
        DeviceNotification notification(functions);
        QElapsedTimer time;
        time.start();
        QVERIFY(!notification.wait(100ms)); // then the periodic scan is due
        QVERIFY2(time.elapsed() >= 90, qPrintable(QString::number(time.elapsed())));

        notification.interrupt();
        QVERIFY(!notification.wait(10min));
    }
    QCOMPARE(manager.unsubscribed.load(), 0);
}

void HidNotificationTest::notificationsUntilTheVeryEndDoNoHarm()
{
    for (int i = 0; i < 50; ++i) {
        DeviceNotification notification(kFunctions);
        manager.isSending = true;
        manager.sender = std::thread([] {
            while (manager.isSending)
                manager.tell(kInterfaceRemoval);
        });
        QVERIFY(notification.wait(10s));
    }
    QCOMPARE(manager.unsubscribed.load(), 50);
}

QUILLON_TEST_CORE(HidNotificationTest)
#include "tst_hid_notification.moc"
