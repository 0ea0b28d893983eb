// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <windows.h>

#include <memory>

namespace HIDCommunicator {

struct CloseSystemHandle {
    void operator()(void *handle) const { CloseHandle(handle); }
};

/// A handle of the system's that is closed with its owner. Null: none.
using SystemHandle = std::unique_ptr<void, CloseSystemHandle>;

/// What a failing CreateFile() gives counts as none.
inline SystemHandle ownFile(HANDLE file)
{
    return SystemHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

/// An event that only its owner resets, or one that a single wait takes.
inline SystemHandle makeEvent(bool takenByAWait)
{
    return SystemHandle(CreateEventW(nullptr, !takenByAWait, FALSE, nullptr));
}

} // namespace HIDCommunicator
