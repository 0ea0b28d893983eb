// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "BusWatch.h"

#include <chrono>
#include <utility>

namespace HIDCommunicator {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPeriodWithoutDevice{1};
constexpr std::chrono::seconds kPeriodWithDevice{3};

} // namespace

BusWatch::BusWatch(HidTransport &transport, Duties duties)
    : m_transport(transport)
    , m_duties(std::move(duties))
{
}

void BusWatch::start()
{
    m_thread.start([this](const std::atomic<bool> &stopped) { run(stopped); });
}

void BusWatch::requestScan()
{
    m_scanRequested = true;
    m_transport.interruptHotplugWait();
}

void BusWatch::wake()
{
    m_transport.interruptHotplugWait();
}

void BusWatch::run(const std::atomic<bool> &stopped)
{
    Clock::time_point scanned = Clock::now();
    while (!stopped) {
        m_duties.announce();
        const auto period = m_duties.deviceIsOpen() ? kPeriodWithDevice : kPeriodWithoutDevice;
        const auto left = scanned + period - Clock::now();
        if (m_scanRequested.exchange(false) || left <= Clock::duration::zero()) {
            scanned = Clock::now();
            m_duties.scan(stopped);
        } else if (m_transport.waitForHotplug(std::chrono::ceil<std::chrono::milliseconds>(left))) {
            m_scanRequested = true;
        }
    }
}

} // namespace HIDCommunicator
