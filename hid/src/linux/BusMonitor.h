#pragma once

#include "Udev.h"

#include <chrono>

namespace HIDCommunicator {

/// Waits for hidraw nodes that come and go. Where the system gives no events it only waits: the periodic scan
/// remains.
class BusMonitor {
public:
    BusMonitor();
    ~BusMonitor();
    BusMonitor(const BusMonitor &) = delete;
    BusMonitor &operator=(const BusMonitor &) = delete;

    /// As HidTransport::waitForHotplug().
    bool wait(std::chrono::milliseconds timeout);
    /// As HidTransport::interruptHotplugWait().
    void interrupt();

private:
    bool takeEvents(short found);

    UdevPointer<udev> m_context;
    UdevPointer<udev_monitor> m_monitor;
    int m_interrupt = -1;
};

} // namespace HIDCommunicator
