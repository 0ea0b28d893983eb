// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

#include <functional>

/// Runs a function the moment the GUI thread logs a line that begins as given (any line: ""), while the
/// object lives: what is so at that moment tells the order of a line and of what happens around it. Lines
/// that the function itself logs are not looked at. One at a time, and a LogCapture ends after it or before
/// it began.
class LogHook {
public:
    LogHook(const QString &beginning, std::function<void(const QString &line)> action);
    ~LogHook();
    LogHook(const LogHook &) = delete;
    LogHook &operator=(const LogHook &) = delete;
};
