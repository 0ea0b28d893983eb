// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Definitions in the test's executable take the place of those in the C library and in libudev.
#include "MockUdevd.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <dlfcn.h>
#include <libudev.h>
#include <unistd.h>

namespace {

std::atomic<bool> isRunning{false};
std::atomic<bool> nodesAreSettled{true};
std::atomic<const char *> group{""};
std::atomic<int> questionsAsked{0};
std::atomic<int> takenEvents{0};

template <typename Function> Function *theRealOne(Function *, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

void MockUdevd::setRunning(bool running)
{
    isRunning = running;
}

bool MockUdevd::running()
{
    return isRunning;
}

void MockUdevd::setNodesSettled(bool settled)
{
    nodesAreSettled = settled;
}

int MockUdevd::questions()
{
    return questionsAsked;
}

int MockUdevd::eventsTaken()
{
    return takenEvents;
}

QByteArray MockUdevd::monitoredGroup()
{
    return group.load();
}

extern "C" {

__attribute__((visibility("default"))) int access(const char *path, int mode) noexcept
{
    if (std::strcmp(path, "/run/udev/control") == 0) {
        errno = ENOENT;
        return isRunning ? 0 : -1;
    }
    return theRealOne(&access, "access")(path, mode);
}

__attribute__((visibility("default"))) int udev_device_get_is_initialized(udev_device *)
{
    return isRunning && nodesAreSettled;
}

__attribute__((visibility("default"))) udev_device *
udev_device_new_from_subsystem_sysname(udev *context, const char *subsystem, const char *name)
{
    ++questionsAsked;
    return theRealOne(&udev_device_new_from_subsystem_sysname,
                      "udev_device_new_from_subsystem_sysname")(context, subsystem, name);
}

__attribute__((visibility("default"))) udev_monitor *udev_monitor_new_from_netlink(udev *context,
                                                                                   const char *name)
{
    group = std::strcmp(name, "udev") == 0 ? "udev" : "kernel";
    return theRealOne(&udev_monitor_new_from_netlink, "udev_monitor_new_from_netlink")(context, name);
}

__attribute__((visibility("default"))) udev_device *udev_monitor_receive_device(udev_monitor *monitor)
{
    udev_device *const device
        = theRealOne(&udev_monitor_receive_device, "udev_monitor_receive_device")(monitor);
    takenEvents += device ? 1 : 0;
    return device;
}

} // extern "C"
