// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile reports of a host to the simulated device, in both protocols that it understands. The first byte of
// an input says in which state the chips are, the next two which faults are armed; then come reports, each
// behind a byte with its length.
#include "device/RegisterReport.h"
#include "rig/BootLoaderResponder.h"
#include "rig/DeviceReplies.h"
#include "rig/RegisterReports.h"
#include "tests/fuzz/Application.h"
#include "tests/fuzz/Input.h"
#include "tests/fuzz/ReadyDevice.h"

using namespace rig;
using fuzz::require;

namespace {

constexpr quint8 kR1 = 0x01;
constexpr quint8 kPcRuns = 0x02;
constexpr quint8 kOtgRuns = 0x04;
constexpr quint8 kOtg = 0x08; ///< the boot loader of this chip is spoken to
/// Reports get the length and the checksum of sound ones, so that what is behind those is reached.
constexpr quint8 kMended = 0x10;
constexpr quint8 kUnplugged = 0x20;

const Fault kFaults[]
    = {Fault::DevicePulledAtErase,   Fault::DevicePulledAtHalf,   Fault::DevicePulledAtRestart,
       Fault::DeviceDamagedTransfer, Fault::DeviceZeroVersions,   Fault::DeviceSaysDfu,
       Fault::DeviceSilent,          Fault::DeviceHostileLengths, Fault::DeviceGarbledReplies,
       Fault::DeviceBadChecksum,     Fault::DeviceShortReplies};
/// Those after which a reply need not be one that can be read.
const Fault kSpoilers[] = {Fault::DeviceHostileLengths, Fault::DeviceGarbledReplies, Fault::DeviceBadChecksum,
                           Fault::DeviceShortReplies};

QByteArray mended(const QByteArray &bytes)
{
    QByteArray report = bytes.left(kReportSize).leftJustified(kReportSize, '\0');
    if (report.at(0) != kReportId)
        return report;
    const int length = 7 + quint8(report.at(2)) % 58;
    const QByteArray payload = report.mid(6, length - 7);
    QList<quint16> words;
    words.reserve(payload.size() / 2);
    for (qsizetype at = 0; at + 2 <= payload.size(); at += 2)
        words.append(quint16(quint8(payload.at(at)) | quint8(payload.at(at + 1)) << 8));
    return encodeReport(quint8(report.at(5)), words);
}

void checkReply(const RegisterRequest &request, const QByteArray &reply, bool spoiled)
{
    require(reply.size() <= kReportSize && reply.startsWith(kReportId), "a reply has the family's ID");
    const auto decoded = RegisterReport::decode(reply.sliced(1));
    if (spoiled)
        return;
    require(reply.size() == kReportSize, "a reply is a whole report");
    require(decoded && decoded->hasStartMark, "the panel's own reader takes it");
    require(decoded->checksum == decoded->rightChecksum, "its checksum is right");
    require(decoded->operation == quint8(request.operation), "it answers what was asked");
    require(decoded->words.startsWith(request.addresses.first()), "for the register that was asked for");
}

void checkRegisters(const QByteArray &report, Registers &registers, FaultBoard &faults)
{
    const auto request = decodeRequest(report);
    const bool silent = faults.isArmed(Fault::DeviceSilent);
    const bool spoiled = std::any_of(std::begin(kSpoilers), std::end(kSpoilers),
                                     [&faults](Fault fault) { return faults.isArmed(fault); });
    const QList<QByteArray> replies = repliesTo(report, registers, faults);
    require(replies.size() == (request && !silent ? 1 : 0), "a request has one reply, nonsense none");
    if (!request)
        return;
    require(!request->addresses.isEmpty() && request->addresses.size() <= 26, "a reply holds all it is for");
    require(request->values.isEmpty() || request->values.size() == request->addresses.size(),
            "each register that is written has a value");
    for (const QByteArray &reply : replies)
        checkReply(*request, reply, spoiled);
}

void checkBootLoader(const QByteArray &report, BootLoaderResponder &responder)
{
    const auto request = decodeBootLoaderReport(report);
    require(!request
                || encode(*request).left(3 + request->payload.size())
                    == report.left(3 + request->payload.size()),
            "a boot loader's report that is read can be written");
    const BootLoaderAnswer answer = responder.answer(report);
    if (answer.report.isEmpty())
        return;
    const auto read = decodeBootLoaderReport(answer.report);
    require(request && read && read->command == request->command, "an answer is one to what was asked");
    const bool digest = request->command == BootLoaderCommand::Digest;
    require(read->payload.size() == (digest ? 32 : 1), "an answer has its size");
    require((answer.after.count() > 0) == (request->command == BootLoaderCommand::Erase),
            "only erasing takes its time");
}

void play(ReadyDevice &stage, fuzz::Input &input)
{
    const quint8 state = input.takeByte();
    const quint8 someFaults = input.takeByte();
    const int armed = someFaults | input.takeByte() << 8;
    const Chip chip = state & kOtg ? Chip::Otg : Chip::Pc;
    stage.reset(state & kR1 ? Model::R1 : Model::R2, state & kPcRuns, state & kOtgRuns);
    if (state & kUnplugged)
        stage.device().unplug(chip);
    for (std::size_t i = 0; i < std::size(kFaults); ++i) {
        if (armed >> i & 1)
            stage.faults().arm(kFaults[i]);
    }
    BootLoader bootLoader(stage.device(), stage.faults(), chip);
    BootLoaderResponder responder(bootLoader);
    Registers registers{bool(state & kMended), stage.device().runningVersion(Chip::Pc),
                        stage.device().runningVersion(Chip::Otg)};
    while (!input.atEnd()) {
        const QByteArray bytes = input.take(input.takeByte());
        const QByteArray report = state & kMended ? mended(bytes) : bytes;
        const int restarts = bootLoader.restarts();
        checkRegisters(report, registers, stage.faults());
        checkBootLoader(report, responder);
        require(stage.device().flash(chip).size() <= kFlashSize, "a flash does not grow");
        stage.bringBack(bootLoader, chip, restarts);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::startApplication();
    static ReadyDevice stage;
    fuzz::Input input(data, size);
    play(stage, input);
    return 0;
}
