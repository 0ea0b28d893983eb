#include "probe/RegisterReport.h"

#include <algorithm>
#include <numeric>

namespace probe {

namespace {

constexpr qsizetype kLengthAt = 1;
constexpr qsizetype kOperationAt = 4;
constexpr qsizetype kPayloadAt = 5;
constexpr int kChecksumSize = 2;
constexpr char kStartMark = char(0xC4);

quint16 wordAt(const QByteArray &report, qsizetype at)
{
    return quint16(quint8(report.at(at)) | quint8(report.at(at + 1)) << 8);
}

/// What makes the sum of \a covered and itself zero modulo 0x10000.
quint16 checksumOf(QByteArrayView covered)
{
    const unsigned sum = std::accumulate(covered.begin(), covered.end(), 0u,
                                         [](unsigned sum, char byte) { return sum + quint8(byte); });
    return quint16(0u - sum);
}

} // namespace

std::optional<RegisterReport> RegisterReport::decode(const QByteArray &report)
{
    if (report.size() <= kOperationAt)
        return std::nullopt;
    RegisterReport decoded;
    decoded.hasStartMark = report.at(0) == kStartMark;
    decoded.stated = quint8(report.at(kLengthAt));
    decoded.operation = quint8(report.at(kOperationAt));
    const qsizetype payloadEnd
        = std::clamp<qsizetype>(decoded.stated - kChecksumSize, kPayloadAt, report.size());
    for (qsizetype at = kPayloadAt; at + 2 <= payloadEnd; at += 2)
        decoded.words.append(wordAt(report, at));
    decoded.rightChecksum = checksumOf(QByteArrayView(report).first(payloadEnd));
    if (decoded.stated >= kPayloadAt + kChecksumSize && decoded.stated <= report.size())
        decoded.checksum = wordAt(report, payloadEnd);
    return decoded;
}

} // namespace probe
