// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

/// Collects every log line of the process while it lives, and passes it on to the handler that was there
/// before. One at a time.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    bool contains(const QString &line) const { return lines().contains(line); }
    int count(const QString &line) const { return int(lines().count(line)); }
    /// The lines that begin with \a prefix, in order.
    QStringList startingWith(const QString &prefix) const;
    void clear();
};
