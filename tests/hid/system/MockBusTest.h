// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/hid/Recorder.h"
#include "tests/support/MockBus.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QObject>

#include <memory>

/// Base of the tests on the library as it ships, against mock devices: each test function starts with an
/// empty bus, one acquire() and a recorder, and ends with the release() and a look whether everything was
/// closed.
class MockBusTest : public QObject {
    Q_OBJECT

protected:
    /// Any longer than this, and something is lost. Nothing is expected to take nearly as long.
    static constexpr int kPatienceMs = 20000;

    MockBus &bus() { return *m_bus; }
    Recorder &recorder() { return *m_recorder; }
    static HIDCommunicator::OrvikHIDManager &manager();

    static bool open(const MockDevice &device, int productId = 0x000E);
    static void startThreads();
    /// The recorder does what a panel does: opens what it finds, closes the threads of what has gone.
    void answerAsAPanel();
    /// Whether the bus's last scan found just these.
    bool lastScanFound(const QStringList &paths) const;
    /// Whether \a device gets a report through the library, and the library the answer.
    bool isServed(MockDevice &device);

    static QByteArray
    report(int mark); ///< an output report with \a mark and its complement behind the start mark
    static int openDeviceFiles(); ///< handles on any node, a device's own included

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private:
    void listen(Recorder::Hooks hooks);

    std::unique_ptr<MockBus> m_bus;
    std::unique_ptr<Recorder> m_recorder;
    int m_deviceFiles = 0;
};
