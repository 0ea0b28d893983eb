// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <chrono>
#include <memory>

/// What udev tells any program that listens, on a thread of its own: the measure for a listener of ours.
class SystemAnnouncements {
public:
    SystemAnnouncements();
    ~SystemAnnouncements();
    SystemAnnouncements(const SystemAnnouncements &) = delete;
    SystemAnnouncements &operator=(const SystemAnnouncements &) = delete;

    /// The next device that comes is waited for.
    void expect();
    /// When it was announced; waits until it is.
    std::chrono::steady_clock::time_point heardAt();

private:
    struct State;
    std::unique_ptr<State> m_state;
};
