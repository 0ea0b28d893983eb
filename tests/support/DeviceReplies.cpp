// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/DeviceReplies.h"

#include "rig/RegisterReports.h"

namespace DeviceReplies {

using rig::Operation;

QByteArray reply(quint8 operation, const QList<quint16> &words)
{
    return rig::encodeReport(operation, words).sliced(1);
}

QByteArray mode(quint16 flag)
{
    return reply(quint8(Operation::RandomRead), {rig::kModeRegister, flag});
}

QByteArray version(quint16 start, Version version)
{
    return reply(quint8(Operation::ContinuousRead), {start, 3, version.major, version.minor, version.patch});
}

QByteArray pcVersion(Version numbers)
{
    return version(rig::kPcVersionRegister, numbers);
}

QByteArray otgVersion(Version numbers)
{
    return version(rig::kOtgVersionRegister, numbers);
}

QByteArray withId(const QByteArray &reply)
{
    return rig::kReportId + reply;
}

std::function<QList<QByteArray>(const QByteArray &report)> device(Version pc, Version otg)
{
    return [pc, otg](const QByteArray &report) -> QList<QByteArray> {
        const auto request = rig::decodeRequest(report);
        const auto asks = [&request](Operation operation, quint16 address) {
            return request && request->operation == operation && request->addresses.first() == address;
        };
        if (asks(Operation::RandomRead, rig::kModeRegister))
            return {withId(mode(0))};
        if (asks(Operation::ContinuousRead, rig::kPcVersionRegister))
            return {withId(pcVersion(pc))};
        if (asks(Operation::ContinuousRead, rig::kOtgVersionRegister))
            return {withId(otgVersion(otg))};
        return {};
    };
}

} // namespace DeviceReplies
