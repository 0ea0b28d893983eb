// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/hid/bus/BusTest.h"

#include <QtTest>

#include <utility>

using HIDCommunicator::OrvikHIDManager;

OrvikHIDManager &BusTest::manager()
{
    return *OrvikHIDManager::instance();
}

void BusTest::startThreads()
{
    manager().createOrvikSendDataThread();
    manager().createOrvikReceiveDataThread();
}

void BusTest::answerAsAPanel()
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

QByteArray BusTest::report(int mark)
{
    QByteArray bytes = QByteArray::fromHex("51c4") + char(mark) + char(mark >> 8) + char(~mark);
    while (bytes.size() < 65)
        bytes.append(char(mark + bytes.size()));
    return bytes;
}

QByteArray BusTest::nextReport()
{
    static int mark = 0;
    return report(++mark);
}

void BusTest::listen(Recorder::Hooks hooks)
{
    if (m_recorder)
        m_recorder->silence();
    m_recorder = std::make_unique<Recorder>(Qt::QueuedConnection, std::move(hooks));
}

void BusTest::acquireAndListen()
{
    manager().acquire();
    listen({});
}

void BusTest::stopListeningAndRelease()
{
    m_recorder->silence();
    manager().release();
    m_recorder.reset();
    QVERIFY(!manager().getConnected());
}
