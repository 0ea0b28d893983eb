// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/trace/Trace.h"

namespace probe {

/// A report of the device and how long after its cause it came.
struct ReplayAnswer {
    std::chrono::milliseconds delay{0};
    QByteArray report;
};

/// What was asked, and all that was answered to it.
struct ReplayExchange {
    std::chrono::milliseconds time{0}; ///< of the question, in the trace
    QByteArray request;
    QList<ReplayAnswer> answers;
};

/// The life of a device from its plug to its unplug.
struct ReplayDevice {
    int number = 0;
    int vendorId = 0;
    int productId = 0;
    std::chrono::milliseconds plugged{0};
    std::optional<std::chrono::milliseconds> unplugged;
    QList<TraceEvent::Kind> openings; ///< how each attempt to open it ended: Open, Denied or Refused
    QList<ReplayAnswer> greetings; ///< what it sent before it was asked anything; from its first opening on
    QList<ReplayExchange> exchanges;
};

/// \a trace by device. A report of a device belongs to the oldest question of the same operation and register
/// that has no answer yet, so that questions asked in one breath keep their answers; any other one belongs to
/// the question asked last.
QList<ReplayDevice> devicesOf(const Trace &trace);

/// Whether two reports are the same but for zeros at the end: transports differ in how they fill up a report.
bool sameReport(const QByteArray &left, const QByteArray &right);

} // namespace probe
