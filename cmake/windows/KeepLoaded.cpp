// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Becomes a part of a library that stays in the process once it has been loaded.
#include <windows.h>

namespace {

bool keepLoaded()
{
    HMODULE library = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                              reinterpret_cast<LPCWSTR>(&keepLoaded), &library)
        != 0;
}

[[maybe_unused]] const bool kept = keepLoaded();

} // namespace
