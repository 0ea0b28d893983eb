// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/watch/StallRule.h"

namespace rig {

using namespace std::chrono_literals;

const QList<StatedWait> &statedWaits()
{
    static const QList<StatedWait> waits{
        {"QProcess::waitForStarted", 3000ms}, // the flashing tool is being started
        {"QProcess::waitForFinished", 1500ms}, // it is being ended
    };
    return waits;
}

void Stretch::add(std::chrono::nanoseconds real, std::chrono::nanoseconds shown, const StatedWait *wait)
{
    if (wait)
        m_waited += shown;
    if (!wait || m_waited > wait->limit)
        m_frozen += real;
}

} // namespace rig
