// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "ReportDescriptor.h"

namespace HIDCommunicator {

namespace {

// Item prefixes of a report descriptor: type and tag in the upper six bits, the data's size in the lower two.
constexpr quint8 kSizeMask = 0x03;
constexpr quint8 kReportIdItem = 0x84;
constexpr quint8 kLongItem = 0xFE;

/// Length of a short item's data, by the size bits of its prefix.
constexpr int kShortDataLength[] = {0, 1, 2, 4};

} // namespace

bool declaresReportId(const QByteArray &descriptor, quint8 reportId)
{
    qsizetype at = 0;
    while (at < descriptor.size()) {
        const auto prefix = quint8(descriptor.at(at));
        if (prefix == kLongItem) {
            // Its second byte is the length of what follows the three-byte head.
            if (at + 1 >= descriptor.size())
                return false;
            at += 3 + quint8(descriptor.at(at + 1));
            continue;
        }
        const int length = kShortDataLength[prefix & kSizeMask];
        const bool whole = length > 0 && at + length < descriptor.size();
        if (whole && (prefix & ~kSizeMask) == kReportIdItem && quint8(descriptor.at(at + 1)) == reportId)
            return true;
        at += 1 + length;
    }
    return false;
}

} // namespace HIDCommunicator
