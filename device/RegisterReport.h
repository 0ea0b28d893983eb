// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

/// A report of the register protocol, in either direction, taken apart to the checksum: for a diagnosis. What
/// the panel reads is in device/Report.h. Nothing trusts what the report states about itself: what it does
/// not hold is not there.
struct RegisterReport {
    bool hasStartMark = false;
    int stated = 0; ///< the length it states: from the start mark to the checksum
    quint8 operation = 0;
    QList<quint16> words; ///< the payload as far as it is stated and present
    std::optional<quint16> checksum; ///< none when the report ends before it
    quint16 rightChecksum = 0; ///< of what is there

    /// \a report without its ID; nothing when it ends before the operation.
    static std::optional<RegisterReport> decode(const QByteArray &report);
};
