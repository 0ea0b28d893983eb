// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/RegisterReports.h"

#include "rig/LittleEndian.h"

#include <numeric>

namespace rig {

namespace {

// Offsets in a report that begins with its ID.
constexpr int kMarkAt = 1;
constexpr int kLengthAt = 2;
constexpr int kOperationAt = 5;
constexpr int kPayloadAt = 6;
constexpr char kMark = char(0xC4);
constexpr int kFrame = 7; // mark, length, two zeros, operation and checksum

// Registers in one report, so that request and reply fit: entries of an address and a value, and bare values.
constexpr int kMaxEntries = (kReportSize - 1 - kFrame) / 4;
constexpr int kMaxRun = (kReportSize - 1 - kFrame - 4) / 2;

// Makes the sum of all bytes from the mark on, this one included, zero modulo 0x10000.
quint16 checksum(QByteArrayView covered)
{
    const unsigned sum = std::accumulate(covered.begin(), covered.end(), 0u,
                                         [](unsigned sum, char byte) { return sum + quint8(byte); });
    return quint16(0x10000u - (sum & 0xFFFFu));
}

bool isIntact(const QByteArray &report)
{
    if (report.size() != kReportSize || report.at(0) != kReportId || report.at(kMarkAt) != kMark)
        return false;
    const int length = quint8(report.at(kLengthAt));
    if (length < kFrame || length > kReportSize - 1 || report.at(3) != 0 || report.at(4) != 0)
        return false;
    return numberAt<quint16>(report, length - 1)
        == checksum(QByteArrayView(report).sliced(kMarkAt, length - 2));
}

RegisterRequest decodeEntries(Operation operation, const QByteArray &payload)
{
    RegisterRequest request{operation, {}, {}};
    const int width = operation == Operation::RandomRead ? 2 : 4;
    for (int at = 0; at + width <= payload.size(); at += width) {
        request.addresses.append(numberAt<quint16>(payload, at));
        if (operation == Operation::RandomWrite)
            request.values.append(numberAt<quint16>(payload, at + 2));
    }
    const bool whole = payload.size() % width == 0;
    if (!whole || request.addresses.size() > kMaxEntries)
        request.addresses.clear();
    return request;
}

RegisterRequest decodeRun(Operation operation, const QByteArray &payload)
{
    RegisterRequest request{operation, {}, {}};
    if (payload.size() < 4)
        return request;
    const quint16 start = numberAt<quint16>(payload, 0);
    const int count = numberAt<quint16>(payload, 2);
    const int values = operation == Operation::ContinuousWrite ? count : 0;
    if (count > kMaxRun || payload.size() != 4 + 2 * values)
        return request;
    for (int i = 0; i < count; ++i)
        request.addresses.append(quint16(start + i));
    for (int i = 0; i < values; ++i)
        request.values.append(numberAt<quint16>(payload, 4 + 2 * i));
    return request;
}

} // namespace

QByteArray encodeReport(quint8 operation, const QList<quint16> &words)
{
    QByteArray report(kPayloadAt, '\0');
    report[0] = kReportId;
    report[kMarkAt] = kMark;
    report[kLengthAt] = char(kFrame + 2 * words.size());
    report[kOperationAt] = char(operation);
    for (const quint16 word : words)
        report += bytesOf(word);
    report += bytesOf(checksum(QByteArrayView(report).sliced(kMarkAt)));
    return report.leftJustified(kReportSize, '\0');
}

std::optional<RegisterRequest> decodeRequest(const QByteArray &report)
{
    if (!isIntact(report))
        return {};
    const QByteArray payload = report.sliced(kPayloadAt, quint8(report.at(kLengthAt)) - kFrame);
    const auto operation = Operation(report.at(kOperationAt));
    RegisterRequest request{operation, {}, {}};
    switch (operation) {
    case Operation::RandomRead:
    case Operation::RandomWrite:
        request = decodeEntries(operation, payload);
        break;
    case Operation::ContinuousRead:
    case Operation::ContinuousWrite:
        request = decodeRun(operation, payload);
        break;
    }
    return request.addresses.isEmpty() ? std::nullopt : std::optional(request);
}

QByteArray encodeReply(const RegisterRequest &request, const std::function<quint16(quint16)> &valueOf)
{
    const bool run
        = request.operation == Operation::ContinuousRead || request.operation == Operation::ContinuousWrite;
    QList<quint16> words;
    if (run)
        words << request.addresses.first() << quint16(request.addresses.size());
    for (const quint16 address : request.addresses) {
        if (!run)
            words << address;
        if (request.operation != Operation::ContinuousWrite)
            words << valueOf(address);
    }
    return encodeReport(quint8(request.operation), words);
}

} // namespace rig
