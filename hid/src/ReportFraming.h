// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

#include <optional>

namespace HIDCommunicator {

/// The one report ID the devices of the family speak, in both directions.
constexpr char kReportId = 0x51;
/// An output report on the wire, report ID included, in bytes.
constexpr int kOutputReportSize = 65;

/// \a report as it goes out: zeros behind it up to kOutputReportSize. Nothing when it is empty, too long or
/// does not begin with kReportId: no device of the family could take it.
std::optional<QByteArray> outputReport(const QByteArray &report);

/// What an input report says behind its ID, of any length. Nothing when it does not begin with kReportId.
std::optional<QByteArray> inputPayload(const QByteArray &report);

} // namespace HIDCommunicator
