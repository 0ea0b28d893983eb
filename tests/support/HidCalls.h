// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <functional>

#include <QString>

/// Writes every call that the panel makes to the HID library into the log, then lets the real library do it.
/// In the log the calls stand between the panel's own lines, so a LogCapture shows the order of both:
///
///     hid: openHIDHandle(\\?\hid#vid_352f&pid_000e#1, 0x352f, 0x000e, 0)
///     hid: DC_AddSendData(65: 51 c4 09 00 00 04 08 10 17 ff)      size, then the bytes without the zeros at
///     the end hid? getConnected() = true                                  questions, which change nothing
///
/// Link quillon_test_hid_calls to have it. Calls that the library makes to itself are not written.
namespace HidCalls {

/// Runs \a action right after the panel's next call of \a function ("release") has been carried out, once.
void after(const QString &function, const std::function<void()> &action);

} // namespace HidCalls
