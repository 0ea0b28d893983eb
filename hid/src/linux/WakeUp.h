// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "Descriptor.h"

namespace HIDCommunicator {

/// Ends a thread's poll() from another thread: once raised it stays readable until it is taken.
class WakeUp {
public:
    WakeUp();

    bool works() const { return m_event.isOpen(); }
    int descriptor() const { return m_event.get(); } ///< for poll(), which leaves out a negative one
    void raise();
    void take();

private:
    Descriptor m_event;
};

} // namespace HIDCommunicator
