// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderReports.h"

namespace rig {

namespace {
constexpr int kCommandAt = 1;
constexpr int kLengthAt = 2;
constexpr int kPayloadAt = 3;
constexpr int kSize = kPayloadAt + kMaxBootLoaderPayload;
} // namespace

QByteArray encode(const BootLoaderReport &report)
{
    QByteArray bytes(kPayloadAt, kBootLoaderReportId);
    bytes[kCommandAt] = char(report.command);
    bytes[kLengthAt] = char(report.payload.size());
    bytes += report.payload;
    return bytes.leftJustified(kSize, '\0');
}

std::optional<BootLoaderReport> decodeBootLoaderReport(const QByteArray &bytes)
{
    if (bytes.size() != kSize || bytes.at(0) != kBootLoaderReportId)
        return {};
    const auto command = BootLoaderCommand(bytes.at(kCommandAt));
    const int length = quint8(bytes.at(kLengthAt));
    if (command < BootLoaderCommand::Enter || command > BootLoaderCommand::Restart
        || length > kMaxBootLoaderPayload)
        return {};
    return BootLoaderReport{command, bytes.sliced(kPayloadAt, length)};
}

} // namespace rig
