// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "MockBusTest.h"

#include "MockUdevd.h"

#include <QDir>
#include <QtTest>

bool MockBusTest::lastScanFound(const QStringList &paths) const
{
    const QList<QStringList> lists = recorder().lists();
    return !lists.isEmpty() && lists.last() == paths;
}

int MockBusTest::openDeviceFiles()
{
    int count = 0;
    for (const QFileInfo &descriptor :
         QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::System | QDir::Files))
        count += descriptor.symLinkTarget().startsWith(QLatin1String("/dev/pts/"));
    return count;
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
    acquireAndListen();
}

void MockBusTest::cleanup()
{
    stopListeningAndRelease();
    QTRY_COMPARE(openDeviceFiles(), m_deviceFiles);
}

void MockBusTest::cleanupTestCase()
{
    m_bus.reset();
}
