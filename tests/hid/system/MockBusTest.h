// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/hid/bus/BusTest.h"
#include "tests/support/MockBus.h"

#include <QStringList>

#include <memory>

/// Base of the tests against mock devices: each test function starts with an empty bus, and ends with a look
/// whether everything was closed.
class MockBusTest : public BusTest {
    Q_OBJECT

protected:
    MockBus &bus() { return *m_bus; }

    /// Whether the bus's last scan found just these.
    bool lastScanFound(const QStringList &paths) const;
    static int openDeviceFiles(); ///< handles on any node, a device's own included

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private:
    std::unique_ptr<MockBus> m_bus;
    int m_deviceFiles = 0;
};
