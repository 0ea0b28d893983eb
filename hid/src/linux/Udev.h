// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <libudev.h>

#include <memory>

#include <unistd.h>

namespace HIDCommunicator {

/// Frees what libudev hands out.
struct UdevRelease {
    void operator()(udev *context) const { udev_unref(context); }
    void operator()(udev_enumerate *enumeration) const { udev_enumerate_unref(enumeration); }
    void operator()(udev_device *device) const { udev_device_unref(device); }
    void operator()(udev_monitor *monitor) const { udev_monitor_unref(monitor); }
};

template <typename T> using UdevPointer = std::unique_ptr<T, UdevRelease>;

/// Whether udevd runs. Without it no node is ever marked as ready, and only the kernel's own events arrive.
inline bool udevDaemonRuns()
{
    return access("/run/udev/control", F_OK) == 0;
}

} // namespace HIDCommunicator
