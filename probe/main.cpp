// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "hid/access/DeviceAccess.h"
#include "probe/Commands.h"
#include "probe/EventPrinter.h"
#include "probe/trace/ReplayTransport.h"
#include "probe/trace/TappedTransport.h"
#include "probe/trace/TraceRecorder.h"

#include <QCoreApplication>

namespace {

using namespace probe;

/// The system's bus, or the one that a trace plays; nothing when that cannot be read.
std::optional<Bus> chooseBus(const Options &options, QString *error)
{
    if (options.replayFile.isEmpty())
        return Bus{HIDCommunicator::makeDefaultTransport(), DeviceAccess::isDenied};
    const auto trace = Trace::load(options.replayFile, error);
    if (!trace)
        return std::nullopt;
    const bool asksNothing = options.command == Options::Command::Watch || options.listen;
    return replay(*trace, asksNothing ? Pace::AsRecorded : Pace::WaitsForQuestions);
}

/// Shared with the HID library's threads, one of which may outlive the run when it hangs in the system.
using Recorder = std::shared_ptr<TraceRecorder>;

void recordInto(Bus &bus, const Recorder &recorder)
{
    bus = tap(std::move(bus), [recorder](const TraceEvent &event) { recorder->take(event); });
}

void printFrom(Bus &bus, const Options &options, const Output &output)
{
    const bool plugsOnly = options.command == Options::Command::Watch;
    const auto printer = std::make_shared<EventPrinter>(
        output, plugsOnly ? EventPrinter::Shown::Plugs : EventPrinter::Shown::Everything);
    bus = tap(std::move(bus), [printer](const TraceEvent &event) { printer->take(event); });
}

int runOn(Bus bus, const Options &options, const Output &output)
{
    const auto recorder = std::make_shared<TraceRecorder>();
    if (QString error; !options.recordFile.isEmpty()) {
        if (!recorder->begin(options.recordFile, &error)) {
            output.complain(error);
            return kStatusWrong;
        }
        recordInto(bus, recorder);
    }
    if (options.command == Options::Command::Watch || options.command == Options::Command::Trace)
        printFrom(bus, options, output);
    HIDCommunicator::installTransport(std::move(bus.transport));
    const int status = run(options, output, bus.isDenied);
    if (!recorder->isWhole()) {
        output.complain(options.recordFile
                        + QStringLiteral(": the disk is full or the trace too long; its end is missing"));
        return kStatusWrong;
    }
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const CommandLine line = readCommandLine(QCoreApplication::arguments());
    const Output output(line.options.json);
    if (line.verdict == CommandLine::Verdict::Help) {
        output.line(line.message.trimmed());
        return kStatusDone;
    }
    if (line.verdict == CommandLine::Verdict::Wrong) {
        output.complain(line.message);
        return kStatusWrong;
    }
    QString error;
    auto bus = chooseBus(line.options, &error);
    if (!bus) {
        output.complain(error);
        return kStatusWrong;
    }
    return runOn(std::move(*bus), line.options, output);
}
