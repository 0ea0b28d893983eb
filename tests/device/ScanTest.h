// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelTest.h"

/// Base of the tests of what a scan of the bus finds.
class ScanTest : public PanelTest {
protected:
    /// A panel that upgrades would take its time to go.
    void cleanup() override
    {
        panel().pretendUpgrading(false);
        PanelTest::cleanup();
    }

    QStringList lines() const { return stage().log.lines(); }

    /// Discovery raises the signal all the same; the panel does not act on it.
    void dropRecovery()
    {
        disconnect(&panel(), &FirmwareUpgradeWidget::onDeviceBrickedDetected, &panel(), nullptr);
    }
};
