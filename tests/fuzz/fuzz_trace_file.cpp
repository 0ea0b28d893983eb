// Hostile trace files: reading one must end in a trace or in a message, and a trace must survive being
// written and read again, put into words, and played to somebody who asks all its questions.
#include "probe/ReportWords.h"
#include "probe/trace/ReplayTransport.h"

#include <cstdint>
#include <cstdlib>

using namespace probe;
using namespace std::chrono_literals;

namespace {

const QString kName = QStringLiteral("input");

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isPrintable(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character >= u' ' && character <= u'~'; });
}

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
    const auto again = Trace::parse(text, kName, &error);
    require(again && textOf(*again) == text);
}

void play(const Trace &trace)
{
    const Bus bus = replay(trace);
    for (const TraceEvent &event : trace.events) {
        if (event.kind != TraceEvent::Kind::Plug)
            continue;
        for (const HIDCommunicator::HidDeviceInfo &device : bus.transport->enumerate(event.vendorId)) {
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    QString error;
    const auto trace = Trace::parse(text, kName, &error);
    if (!trace) {
        require(error.startsWith(kName + u':') && isPrintable(error));
        return 0;
    }
    readAgain(*trace);
    for (const TraceEvent &event : trace->events) {
        require(isPrintable(wordsOf(event.report, Direction::In)));
        require(isPrintable(wordsOf(event.report, Direction::Out)));
    }
    play(*trace);
    return 0;
}
