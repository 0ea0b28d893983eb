// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Weights.h"

#include <windows.h>

#include <psapi.h>

namespace rig {

MemoryInUse memoryOfThisProcess()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS *>(&counters),
                         sizeof counters);
    return {qint64(counters.WorkingSetSize), qint64(counters.PrivateUsage)};
}

} // namespace rig
