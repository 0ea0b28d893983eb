// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "StoppableThread.h"

#include <HIDCommunicator/HidTransport.h>

#include <atomic>
#include <functional>

namespace HIDCommunicator {

/// The thread that looks after the bus: at once when something was plugged or unplugged, periodically
/// besides, because a device may be there and not usable yet. What the manager has to announce is announced
/// from here too, so that everything about a device's coming and going is told in the order in which it
/// happened. Every function may be called from any thread.
class BusWatch {
public:
    struct Duties {
        std::function<bool()> deviceIsOpen;
        std::function<void()> announce;
        std::function<void(const std::atomic<bool> &stopped)> scan;
    };

    BusWatch(HidTransport &transport, Duties duties);

    void start();
    void requestStop() { m_thread.requestStop(); } ///< takes effect with the next wake()
    bool waitEnded(Deadline deadline) { return m_thread.waitEnded(deadline); }

    void requestScan(); ///< scans without waiting for an event or the period's end
    void wake(); ///< announces what there is to announce and applies a changed period

private:
    void run(const std::atomic<bool> &stopped);

    HidTransport &m_transport;
    Duties m_duties;
    std::atomic<bool> m_scanRequested{false};
    StoppableThread m_thread;
};

} // namespace HIDCommunicator
