// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QObject>
#include <QThread>

#include <chrono>
#include <functional>

namespace rig {

/// The thread that the device's restarts, the boot loader's socket and the update server run on. The panel
/// blocks the GUI thread while it waits for a server answer or for the tool to start, so the other side must
/// not live there. It starts with the object; the destructor ends it and drops every delayed call.
class RigThread {
public:
    RigThread();
    ~RigThread();
    RigThread(const RigThread &) = delete;
    RigThread &operator=(const RigThread &) = delete;

    /// An object that lives on the thread: context for connections, parent for what is created there.
    QObject *context() const { return m_context; }

    void after(std::chrono::milliseconds delay, std::function<void()> call); ///< callable from any thread
    void runAndWait(
        const std::function<void()> &call); ///< returns when \a call has run; also from the thread itself

private:
    QThread m_thread;
    QObject *m_context;
};

} // namespace rig
