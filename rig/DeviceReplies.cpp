// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/DeviceReplies.h"

#include "rig/RegisterReports.h"

#include <QRandomGenerator>

namespace rig {

namespace {

constexpr int kShortReply = 4; // bytes behind the report ID

bool isVersionPart(quint16 address, quint16 version)
{
    return address >= version && address < version + 3;
}

quint16 valueOf(quint16 address, const Registers &registers)
{
    if (address == kModeRegister)
        return registers.inBootLoader ? 1 : 0;
    if (isVersionPart(address, kPcVersionRegister))
        return quint16(registers.pcVersion.segmentAt(address - kPcVersionRegister));
    if (isVersionPart(address, kOtgVersionRegister))
        return quint16(registers.otgVersion.segmentAt(address - kOtgVersionRegister));
    return registers.written.value(address);
}

// The chip whose version the request reads, if it does.
std::optional<Chip> chipReadBy(const RegisterRequest &request)
{
    const quint16 first = request.addresses.first();
    if (request.operation != Operation::ContinuousRead
        || (first != kPcVersionRegister && first != kOtgVersionRegister))
        return {};
    return first == kPcVersionRegister ? Chip::Pc : Chip::Otg;
}

// What this request is told. A fault may change it.
Registers shownTo(const RegisterRequest &request, const Registers &registers, FaultBoard &faults)
{
    Registers shown = registers;
    const bool asksMode
        = request.operation == Operation::RandomRead && request.addresses.first() == kModeRegister;
    if (asksMode && faults.strikes(Fault::DeviceSaysDfu))
        shown.inBootLoader = true;
    if (const auto chip = chipReadBy(request)) {
        QVersionNumber &version = *chip == Chip::Pc ? shown.pcVersion : shown.otgVersion;
        if (version.isNull() || faults.strikes(Fault::DeviceZeroVersions, chip))
            version = QVersionNumber(0, 0, 0);
        shown.told = {*chip, version};
    }
    return shown;
}

void store(const RegisterRequest &request, Registers &registers)
{
    for (int i = 0; i < request.values.size(); ++i)
        registers.written.insert(request.addresses.at(i), request.values.at(i));
}

QByteArray randomBytes(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(char(QRandomGenerator::global()->bounded(256)));
    return bytes;
}

QByteArray damaged(QByteArray reply, FaultBoard &faults)
{
    const int length = quint8(reply.at(2));
    if (faults.strikes(Fault::DeviceGarbledReplies))
        return kReportId + randomBytes(kReportSize - 1);
    if (faults.strikes(Fault::DeviceBadChecksum))
        reply[length] = char(reply.at(length) ^ 0x5A);
    if (faults.strikes(Fault::DeviceHostileLengths))
        reply[2] = char(0xFF);
    if (faults.strikes(Fault::DeviceShortReplies))
        reply.truncate(1 + kShortReply);
    return reply;
}

} // namespace

QList<QByteArray> repliesTo(const QByteArray &report, Registers &registers, FaultBoard &faults)
{
    const std::optional<RegisterRequest> request = decodeRequest(report);
    if (!request || faults.strikes(Fault::DeviceSilent))
        return {};
    store(*request, registers);
    const Registers shown = shownTo(*request, registers, faults);
    registers.told = shown.told;
    const QByteArray reply
        = encodeReply(*request, [&shown](quint16 address) { return valueOf(address, shown); });
    return {damaged(reply, faults)};
}

} // namespace rig
