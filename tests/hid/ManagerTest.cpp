// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "ManagerTest.h"

#include <QtTest>

using HIDCommunicator::OrvikHIDManager;

ScriptedBus &ManagerTest::bus()
{
    static ScriptedBus *const bus = ScriptedBus::install();
    return *bus;
}

OrvikHIDManager &ManagerTest::manager()
{
    bus();
    return *OrvikHIDManager::instance();
}

bool ManagerTest::open(const QString &path, int productId)
{
    return manager().openHIDHandle(path, kVendorId, productId, 0);
}

void ManagerTest::startThreads()
{
    manager().createOrvikSendDataThread();
    manager().createOrvikReceiveDataThread();
}

QString ManagerTest::connectDevice(int productId)
{
    const QString path = bus().plug(productId);
    if (!open(path, productId))
        return {};
    startThreads();
    return path;
}

std::unique_ptr<Recorder> ManagerTest::makeRecorder(Qt::ConnectionType type, Recorder::Hooks hooks)
{
    if (type != Qt::DirectConnection)
        return std::make_unique<Recorder>(type, std::move(hooks));
    // Qt hands a new connection over to a running thread in code that the thread sanitizer does not see into.
    // A thread that starts later is handed everything.
    manager().release();
    auto recorder = std::make_unique<Recorder>(type, std::move(hooks));
    manager().acquire();
    return recorder;
}

Recorder &ManagerTest::listen(Qt::ConnectionType type, Recorder::Hooks hooks)
{
    silenceRecorders();
    s_recorders.push_back(makeRecorder(type, std::move(hooks)));
    return recorder();
}

Recorder &ManagerTest::alsoListen(Qt::ConnectionType type)
{
    return **s_recorders.insert(s_recorders.begin(), makeRecorder(type, {}));
}

void ManagerTest::silenceRecorders()
{
    for (const auto &recorder : s_recorders)
        recorder->silence();
}

QByteArray ManagerTest::report(char mark, int size)
{
    QByteArray bytes(size, '\0');
    bytes[0] = 0x51;
    bytes[1] = char(0xC4);
    bytes[2] = mark;
    return bytes;
}

void ManagerTest::init()
{
    manager().acquire();
    listen(Qt::QueuedConnection);
}

void ManagerTest::cleanup()
{
    silenceRecorders();
    manager().release();
    bus().unplugAll();
    bus().clear();
    QTRY_COMPARE(bus().openConnections(), 0);
    QVERIFY(!manager().getConnected());
    s_recorders.clear();
}
