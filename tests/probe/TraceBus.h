// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/trace/ReplayTransport.h"

#include <HIDCommunicator/HidTransport.h>

#include <QString>

#include <memory>
#include <optional>

/// A bus for tests whose devices come from trace files, one file after the other. What a customer sent is put
/// into a test so:
///
///     TraceBus::play(file);                       // before the panel is made
///     FirmwareUpgradeWidget panel;
///     QTRY_COMPARE(panel.m_devicePcVersion, "1.2.3");
class TraceBus : public HIDCommunicator::HidTransport {
public:
    /// Lays the devices of \a file on the bus, in place of those before. Nobody may be using the HID library.
    static void play(const QString &file)
    {
        QString error;
        const auto trace = probe::Trace::load(file, &error);
        if (!trace)
            qFatal("%s", qPrintable(error));
        static TraceBus *const installed = install();
        installed->m_bus = probe::replay(*trace).transport;
    }

    std::optional<QList<HIDCommunicator::HidDeviceInfo>> enumerate(int vendorId) override
    {
        return m_bus->enumerate(vendorId);
    }
    std::unique_ptr<HIDCommunicator::HidConnection> open(const QString &path) override
    {
        return m_bus->open(path);
    }
    bool waitForHotplug(std::chrono::milliseconds timeout) override { return m_bus->waitForHotplug(timeout); }
    void interruptHotplugWait() override { m_bus->interruptHotplugWait(); }

private:
    static TraceBus *install()
    {
        auto bus = std::make_unique<TraceBus>();
        TraceBus *const installed = bus.get();
        if (!HIDCommunicator::installTransport(std::move(bus)))
            qFatal("TraceBus::play() must come before the HID library is first used");
        return installed;
    }

    std::unique_ptr<HIDCommunicator::HidTransport> m_bus;
};
