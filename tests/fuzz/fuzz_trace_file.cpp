// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile trace files: reading one must end in a trace or in a message, and a trace must survive being
// written and read again, put into words, and played to somebody who asks all its questions. An input without
// a byte is a file that is not there, and one that begins with an empty line is read from a file: the reader
// makes room for a large one, which takes time.
#include "probe/ReportWords.h"
#include "probe/trace/ReplayTransport.h"
#include "tests/fuzz/Files.h"

using namespace probe;
using namespace std::chrono_literals;
using fuzz::require;

namespace {

// A name that is a pattern to those who put messages together.
constexpr char kName[] = "input%1%2%3.trace";

QByteArray textOf(const Trace &trace)
{
    QByteArray text = Trace::firstLine();
    for (const TraceEvent &event : trace.events)
        text += Trace::lineOf(event);
    return text;
}

void readAgain(const Trace &trace)
{
    const QByteArray text = textOf(trace);
    if (text.size() > Trace::kLargestFile)
        return; // runs are written shorter than they may be read, times and IDs longer
    QString error;
    const auto again = Trace::parse(text, QString(), &error);
    require(again && textOf(*again) == text, "a trace that is written can be read");
}

void play(const Trace &trace)
{
    const Bus bus = replay(trace);
    for (const TraceEvent &event : trace.events) {
        if (event.kind != TraceEvent::Kind::Plug)
            continue;
        const auto devices = bus.transport->enumerate(event.vendorId).value();
        for (const HIDCommunicator::HidDeviceInfo &device : devices) {
            bus.isDenied(device.path);
            const auto connection = bus.transport->open(device.path);
            for (const TraceEvent &said : trace.events) {
                QByteArray answer;
                if (connection && said.kind == TraceEvent::Kind::Out && connection->write(said.report))
                    connection->read(answer, 0ms);
            }
        }
        return; // the first device tells; all of them would take the square of the file
    }
}

std::optional<Trace> read(const QByteArray &text, const QString &path, QString *error)
{
    if (text.startsWith('\n'))
        fuzz::write(path, text);
    else if (!text.isEmpty())
        return Trace::parse(text, path, error);
    const auto trace = Trace::load(path, error);
    QFile::remove(path);
    return trace;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QString path = fuzz::fileNamed(kName);
    QString error;
    const auto trace = read(fuzz::bytesOf(data, size), path, &error);
    if (!trace) {
        require(error.startsWith(path + u':'), "a mistake is told with its file");
        require(fuzz::isPlain(error.mid(path.size())), "a message can be printed");
        return 0;
    }
    readAgain(*trace);
    for (const TraceEvent &event : trace->events) {
        require(fuzz::isPlain(wordsOf(event.report, Direction::In)), "a reply is put into words");
        require(fuzz::isPlain(wordsOf(event.report, Direction::Out)), "and so is a request");
        require(fuzz::isPlain(bytesText(event.report)), "and so are their bytes");
    }
    play(*trace);
    return 0;
}
