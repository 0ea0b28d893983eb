// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Whether a device may be opened, asked of the device file that the HID library's own path leads to.
#include "hid/access/DeviceAccess.h"
#include "tests/probe/AsOrdinaryUser.h"
#include "tests/support/MockBus.h"
#include "tests/support/TestProgram.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QFile>
#include <QTest>

using HIDCommunicator::OrvikHIDManager;

class DeviceAccessOnBusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void modeOfTheDeviceFileDecides();
};

void DeviceAccessOnBusTest::modeOfTheDeviceFileDecides()
{
    if (const QString obstacle = MockBus::obstacle(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    MockBus bus;
    QVERIFY2(bus.isShown(), "start this test with umockdev-wrapper");
    // Another user has to find the mock devices too.
    const QString folder = qEnvironmentVariable("UMOCKDEV_DIR");
    QVERIFY(QFile::setPermissions(folder, QFile::permissions(folder) | QFile::ExeGroup | QFile::ExeOther));
    OrvikHIDManager *const manager = OrvikHIDManager::instance();
    manager->acquire();
    const auto device = bus.plug({}, [](MockDevice &device) { device.setPermitted(false); });
    {
        const AsOrdinaryUser user;
        QVERIFY(DeviceAccess::isDenied(device->path()));
    }
    device->setPermitted(true); // to the owner, who is this user
    QVERIFY(!DeviceAccess::isDenied(device->path()));

    const QString path = device->path();
    device->unplug();
    QVERIFY(!DeviceAccess::isDenied(path));
    manager->release();
}

QUILLON_TEST_CORE(DeviceAccessOnBusTest)
#include "tst_device_access_on_bus.moc"
