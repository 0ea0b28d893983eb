// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "SystemBusTest.h"

#include <QtTest>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

SystemDevice::SystemDevice(SystemBus &bus, int number, int place, const SystemIdentity &identity)
    : m_bus(bus)
    , m_number(number)
    , m_place(place)
    , m_identity(identity)
{
}

SystemDevice::~SystemDevice()
{
    unplug();
    const std::lock_guard lock(m_bus.m_mutex);
    m_bus.m_devices.remove(m_number);
}

/// Wine makes it of the serial number, which is the device's own number, and of the place.
QString SystemDevice::path() const
{
    return u"\\\\?\\hid#vid_%1&pid_%2#0&%3&0&%4#{4d1e55b2-f16f-11cf-88cb-001111000030}"_s
        .arg(m_identity.vendorId, 4, 16, QLatin1Char('0'))
        .arg(m_identity.productId, 4, 16, QLatin1Char('0'))
        .arg(m_number)
        .arg(m_place);
}

void SystemDevice::setResponder(Responder responder)
{
    const std::lock_guard lock(m_mutex);
    m_responder = std::move(responder);
}

void SystemDevice::send(const QByteArray &report)
{
    m_bus.m_remote.send(m_number, report);
}

QList<QByteArray> SystemDevice::written() const
{
    const std::lock_guard lock(m_mutex);
    return m_written;
}

int SystemDevice::openHandles() const
{
    return SystemCalls::openHandles(path());
}

void SystemDevice::unplug()
{
    {
        const std::lock_guard lock(m_bus.m_mutex);
        if (!std::exchange(m_plugged, false))
            return;
    }
    m_bus.m_remote.unplug(m_number);
}

void SystemDevice::hear(const QByteArray &report)
{
    QList<QByteArray> answers;
    {
        const std::lock_guard lock(m_mutex);
        m_written.append(report);
        if (m_responder)
            answers = m_responder(report);
    }
    for (const QByteArray &answer : std::as_const(answers))
        send(answer);
}

SystemBus::SystemBus()
    : m_remote([this](int number, const QByteArray &report) { hear(number, report); })
{
}

std::unique_ptr<SystemDevice> SystemBus::plug(const SystemIdentity &identity)
{
    const int number = m_plugs++;
    std::unique_ptr<SystemDevice> device;
    {
        const std::lock_guard lock(m_mutex);
        device = std::make_unique<SystemDevice>(*this, number, placeLocked(identity), identity);
        m_devices.insert(number, device.get());
    }
    m_remote.plug(number, identity.vendorId, identity.productId, identity.reportId);
    return device;
}

int SystemBus::placeLocked(const SystemIdentity &identity) const
{
    int place = 0;
    for (const SystemDevice *device : m_devices) {
        if (device->m_plugged && device->m_identity.vendorId == identity.vendorId
            && device->m_identity.productId == identity.productId)
            place = std::max(place, device->m_place + 1);
    }
    return place;
}

void SystemBus::hear(int number, const QByteArray &report)
{
    const std::lock_guard lock(m_mutex);
    if (SystemDevice *const device = m_devices.value(number))
        device->hear(report);
}

bool SystemBusTest::lastScanFound(const QStringList &paths) const
{
    const QList<QStringList> lists = recorder().lists();
    return !lists.isEmpty()
        && std::is_permutation(lists.last().cbegin(), lists.last().cend(), paths.cbegin(), paths.cend());
}

void SystemBusTest::initTestCase()
{
    m_bus = std::make_unique<SystemBus>();
    QString error;
    QVERIFY2(m_bus->connectToIt(&error), qPrintable(error));
    m_calls = std::make_unique<SystemCalls>();
    // Windows needs a moment to start its bus.
    acquireAndListen();
    QTRY_VERIFY_WITH_TIMEOUT(!recorder().lists().isEmpty(), kPatienceMs);
    stopListeningAndRelease();
}

void SystemBusTest::init()
{
    acquireAndListen();
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({}), kPatienceMs);
    recorder().clear();
    calls().takeOpened();
}

void SystemBusTest::cleanup()
{
    calls().letThrough();
    stopListeningAndRelease();
    QTRY_COMPARE_WITH_TIMEOUT(SystemCalls::openHandles(), 0, kPatienceMs);
}

void SystemBusTest::cleanupTestCase()
{
    m_calls.reset();
    m_bus.reset();
}
