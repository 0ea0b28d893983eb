// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "BusMonitor.h"

#include "LoggingCategory.h"

#include <iterator>

#include <poll.h>

namespace HIDCommunicator {

namespace {

UdevPointer<udev_monitor> listen(udev *context)
{
    // udevd passes an event on when the node has its owner and mode; the kernel's own comes before that.
    const char *const group = udevDaemonRuns() ? "udev" : "kernel";
    UdevPointer<udev_monitor> monitor(context ? udev_monitor_new_from_netlink(context, group) : nullptr);
    if (!monitor || udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "hidraw", nullptr) < 0
        || udev_monitor_enable_receiving(monitor.get()) < 0) {
        qCWarning(hidCategory, "[HID] no hotplug events from the system, scanning periodically only");
        return nullptr;
    }
    return monitor;
}

} // namespace

BusMonitor::BusMonitor()
    : m_context(udev_new())
    , m_monitor(listen(m_context.get()))
{
}

bool BusMonitor::wait(std::chrono::milliseconds timeout)
{
    // poll() leaves out a negative descriptor, so a missing monitor only means that nothing is heard.
    pollfd sources[] = {{m_interrupt.descriptor(), POLLIN, 0},
                        {m_monitor ? udev_monitor_get_fd(m_monitor.get()) : -1, POLLIN, 0}};
    if (poll(sources, std::size(sources), int(timeout.count())) <= 0)
        return false;
    if (sources[0].revents != 0)
        m_interrupt.take();
    return sources[1].revents != 0 && takeEvents(sources[1].revents);
}

/// Takes what the monitor has, so that a device that brings several events is looked at once.
bool BusMonitor::takeEvents(short found)
{
    if (found & (POLLHUP | POLLNVAL)) {
        m_monitor.reset();
        return true;
    }
    // An error says that the system dropped events: as good a reason to look as an event.
    bool plugged = found & POLLERR;
    while (UdevPointer<udev_device>(udev_monitor_receive_device(m_monitor.get())))
        plugged = true;
    return plugged;
}

} // namespace HIDCommunicator
