// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "MockBusTest.h"

#include "MockUdevd.h"

#include <QDir>
#include <QtTest>

using HIDCommunicator::OrvikHIDManager;

OrvikHIDManager &MockBusTest::manager()
{
    return *OrvikHIDManager::instance();
}

bool MockBusTest::open(const MockDevice &device, int productId)
{
    return manager().openHIDHandle(device.path(), 0x352F, productId, 0);
}

void MockBusTest::startThreads()
{
    manager().createOrvikSendDataThread();
    manager().createOrvikReceiveDataThread();
}

void MockBusTest::answerAsAPanel()
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

bool MockBusTest::lastScanFound(const QStringList &paths) const
{
    const QList<QStringList> lists = m_recorder->lists();
    return !lists.isEmpty() && lists.last() == paths;
}

bool MockBusTest::isServed(MockDevice &device)
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

QByteArray MockBusTest::report(int mark)
{
    QByteArray bytes = QByteArray::fromHex("51c4") + char(mark) + char(mark >> 8) + char(~mark);
    while (bytes.size() < 65)
        bytes.append(char(mark + bytes.size()));
    return bytes;
}

int MockBusTest::openDeviceFiles()
{
    int count = 0;
    for (const QFileInfo &descriptor :
         QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::System | QDir::Files))
        count += descriptor.symLinkTarget().startsWith(QLatin1String("/dev/pts/"));
    return count;
}

void MockBusTest::listen(Recorder::Hooks hooks)
{
    if (m_recorder)
        m_recorder->silence();
    m_recorder = std::make_unique<Recorder>(Qt::QueuedConnection, std::move(hooks));
}

void MockBusTest::initTestCase()
{
    const QString obstacle = MockBus::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    MockUdevd::setRunning(qEnvironmentVariableIntValue("MOCK_UDEVD") == 1);
    m_bus = std::make_unique<MockBus>();
    QVERIFY2(m_bus->isShown(), "to be started by umockdev-wrapper");
    manager().acquire();
    manager().release();
    m_deviceFiles = openDeviceFiles();
}

void MockBusTest::init()
{
    manager().acquire();
    listen({});
}

void MockBusTest::cleanup()
{
    m_recorder->silence();
    manager().release();
    m_recorder.reset();
    QVERIFY(!manager().getConnected());
    QTRY_COMPARE(openDeviceFiles(), m_deviceFiles);
}

void MockBusTest::cleanupTestCase()
{
    m_bus.reset();
}
