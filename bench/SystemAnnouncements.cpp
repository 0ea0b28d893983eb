// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/SystemAnnouncements.h"

#include "bench/Results.h"

#include <libudev.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>
#include <thread>

#include <poll.h>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {
struct Release {
    void operator()(udev *context) const { udev_unref(context); }
    void operator()(udev_monitor *monitor) const { udev_monitor_unref(monitor); }
    void operator()(udev_device *device) const { udev_device_unref(device); }
};
constexpr int kLookForTheEndMs = 100;
} // namespace

struct SystemAnnouncements::State {
    void listen()
    {
        while (!isOver) {
            pollfd readable{udev_monitor_get_fd(monitor.get()), POLLIN, 0};
            if (::poll(&readable, 1, kLookForTheEndMs) <= 0)
                continue;
            const std::unique_ptr<udev_device, Release> device(udev_monitor_receive_device(monitor.get()));
            const Clock::time_point now = Clock::now();
            const char *const action = device ? udev_device_get_action(device.get()) : nullptr;
            if (!action || std::strcmp(action, "add") != 0)
                continue;
            const std::lock_guard lock(mutex);
            heard = heard.value_or(now);
            changed.notify_all();
        }
    }

    std::unique_ptr<udev, Release> context{udev_new()};
    std::unique_ptr<udev_monitor, Release> monitor{udev_monitor_new_from_netlink(context.get(), "udev")};
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Clock::time_point> heard;
    std::atomic<bool> isOver{false};
    std::thread thread;
};

SystemAnnouncements::SystemAnnouncements()
    : m_state(std::make_unique<State>())
{
    if (!m_state->monitor
        || udev_monitor_filter_add_match_subsystem_devtype(m_state->monitor.get(), "hidraw", nullptr) != 0
        || udev_monitor_enable_receiving(m_state->monitor.get()) != 0)
        giveUp("listening to udev");
    m_state->thread = std::thread([this] { m_state->listen(); });
}

SystemAnnouncements::~SystemAnnouncements()
{
    m_state->isOver = true;
    m_state->thread.join();
}

void SystemAnnouncements::expect()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->heard.reset();
}

Clock::time_point SystemAnnouncements::heardAt()
{
    std::unique_lock lock(m_state->mutex);
    if (!m_state->changed.wait_for(lock, 5s, [this] { return m_state->heard.has_value(); }))
        giveUp("udev's event of a plug");
    return *m_state->heard;
}
