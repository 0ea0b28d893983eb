// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "ReportFraming.h"

namespace HIDCommunicator {

std::optional<QByteArray> outputReport(const QByteArray &report)
{
    if (!report.startsWith(kReportId) || report.size() > kOutputReportSize)
        return std::nullopt;
    return report.leftJustified(kOutputReportSize, '\0');
}

std::optional<QByteArray> inputPayload(const QByteArray &report)
{
    if (!report.startsWith(kReportId))
        return std::nullopt;
    return report.sliced(1);
}

} // namespace HIDCommunicator
