// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "SystemBusTest.h"

#include <QtTest>

#include <algorithm>
#include <utility>

using HIDCommunicator::OrvikHIDManager;
using namespace Qt::StringLiterals;

SystemDevice::SystemDevice(SystemBus &bus, int number, int place, int vendorId, int productId)
    : m_bus(bus)
    , m_number(number)
    , m_place(place)
    , m_vendorId(vendorId)
    , m_productId(productId)
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
        .arg(m_vendorId, 4, 16, QLatin1Char('0'))
        .arg(m_productId, 4, 16, QLatin1Char('0'))
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

QList<QByteArray> SystemDevice::heard() const
{
    const std::lock_guard lock(m_mutex);
    return m_heard;
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
        m_heard.append(report);
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

std::unique_ptr<SystemDevice> SystemBus::plug(int productId, int vendorId, int reportId)
{
    const int number = m_plugs++;
    std::unique_ptr<SystemDevice> device;
    {
        const std::lock_guard lock(m_mutex);
        device = std::make_unique<SystemDevice>(*this, number, placeLocked(productId, vendorId), vendorId,
                                                productId);
        m_devices.insert(number, device.get());
    }
    m_remote.plug(number, vendorId, productId, reportId);
    return device;
}

int SystemBus::placeLocked(int productId, int vendorId) const
{
    int place = 0;
    for (const SystemDevice *device : m_devices) {
        if (device->m_plugged && device->m_productId == productId && device->m_vendorId == vendorId)
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

OrvikHIDManager &SystemBusTest::manager()
{
    return *OrvikHIDManager::instance();
}

bool SystemBusTest::open(const SystemDevice &device, int productId)
{
    return manager().openHIDHandle(device.path(), 0x352F, productId, 0);
}

void SystemBusTest::startThreads()
{
    manager().createOrvikSendDataThread();
    manager().createOrvikReceiveDataThread();
}

void SystemBusTest::answerAsAPanel()
{
    Recorder::Hooks hooks;
    hooks.onList = [](const QStringList &paths) {
        if (paths.isEmpty() || manager().getConnected())
            return;
        const int productId
            = paths.last().mid(paths.last().indexOf(QLatin1String("pid_")) + 4, 4).toInt(nullptr, 16);
        if (manager().openHIDHandle(paths.last(), 0x352F, productId, 0))
            startThreads();
    };
    hooks.onStatus = &Recorder::closeThreadsOfLostDevice;
    listen(std::move(hooks));
}

bool SystemBusTest::lastScanFound(const QStringList &paths) const
{
    const QList<QStringList> lists = m_recorder->lists();
    return !lists.isEmpty()
        && std::is_permutation(lists.last().cbegin(), lists.last().cend(), paths.cbegin(), paths.cend());
}

bool SystemBusTest::isServed(SystemDevice &device)
{
    static int mark = 0;
    const QByteArray asked = report(++mark);
    const QByteArray answer = report(++mark);
    device.setResponder([asked, answer](const QByteArray &heard) {
        return heard == asked ? QList<QByteArray>{answer} : QList<QByteArray>();
    });
    manager().DC_AddSendData(asked);
    return QTest::qWaitFor([&] { return recorder().reports().contains(answer.sliced(1)); }, kPatienceMs);
}

QByteArray SystemBusTest::report(int mark)
{
    QByteArray bytes = QByteArray::fromHex("51c4") + char(mark) + char(mark >> 8) + char(~mark);
    while (bytes.size() < 65)
        bytes.append(char(mark + bytes.size()));
    return bytes;
}

void SystemBusTest::listen(Recorder::Hooks hooks)
{
    if (m_recorder)
        m_recorder->silence();
    m_recorder = std::make_unique<Recorder>(Qt::QueuedConnection, std::move(hooks));
}

void SystemBusTest::initTestCase()
{
    m_bus = std::make_unique<SystemBus>();
    QString error;
    QVERIFY2(m_bus->connectToIt(&error), qPrintable(error));
    m_calls = std::make_unique<SystemCalls>();
    // Windows needs a moment to start its bus.
    manager().acquire();
    listen({});
    QTRY_VERIFY_WITH_TIMEOUT(!recorder().lists().isEmpty(), kPatienceMs);
    manager().release();
}

void SystemBusTest::init()
{
    manager().acquire();
    listen({});
    QTRY_VERIFY_WITH_TIMEOUT(lastScanFound({}), kPatienceMs);
    recorder().clear();
    calls().takeOpened();
}

void SystemBusTest::cleanup()
{
    m_recorder->silence();
    manager().release();
    m_recorder.reset();
    QVERIFY(!manager().getConnected());
}

void SystemBusTest::cleanupTestCase()
{
    m_calls.reset();
    m_bus.reset();
}
