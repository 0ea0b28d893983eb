#include "probe/trace/ReplayScript.h"

#include <QHash>

namespace probe {

namespace {

using Kind = TraceEvent::Kind;

// Where a report, its ID in front, says what it is about: the operation and the first register.
constexpr qsizetype kSubjectAt = 5;
constexpr qsizetype kSubjectSize = 3;

bool sameSubject(const QByteArray &request, const QByteArray &answer)
{
    return answer.size() >= kSubjectAt + kSubjectSize
        && request.mid(kSubjectAt, kSubjectSize) == answer.mid(kSubjectAt, kSubjectSize);
}

ReplayExchange *askedFor(QList<ReplayExchange> &exchanges, const QByteArray &answer)
{
    for (ReplayExchange &exchange : exchanges) {
        if (exchange.answers.isEmpty() && sameSubject(exchange.request, answer))
            return &exchange;
    }
    return exchanges.isEmpty() ? nullptr : &exchanges.last();
}

class Sorter {
public:
    QList<ReplayDevice> sort(const QList<TraceEvent> &events)
    {
        for (const TraceEvent &event : events) {
            if (event.kind == Kind::Plug)
                plug(event);
            else
                take(event, m_devices[m_places.value(event.device)]);
        }
        return m_devices;
    }

private:
    void plug(const TraceEvent &event)
    {
        ReplayDevice device;
        device.number = event.device;
        device.vendorId = event.vendorId;
        device.productId = event.productId;
        device.plugged = event.time;
        m_places.insert(event.device, m_devices.size());
        m_opened.insert(event.device, event.time);
        m_devices.append(device);
    }

    void take(const TraceEvent &event, ReplayDevice &device)
    {
        switch (event.kind) {
        case Kind::Plug:
            return;
        case Kind::Unplug:
            device.unplugged = event.time;
            return;
        case Kind::Open:
            if (!device.openings.contains(Kind::Open))
                m_opened.insert(event.device, event.time);
            [[fallthrough]];
        case Kind::Denied:
        case Kind::Refused:
            device.openings.append(event.kind);
            return;
        case Kind::Out:
            device.exchanges.append({event.time, event.report, {}});
            return;
        case Kind::In:
            takeAnswer(event, device);
            return;
        }
    }

    void takeAnswer(const TraceEvent &event, ReplayDevice &device)
    {
        if (ReplayExchange *const exchange = askedFor(device.exchanges, event.report))
            exchange->answers.append({event.time - exchange->time, event.report});
        else
            device.greetings.append({event.time - m_opened.value(event.device), event.report});
    }

    QList<ReplayDevice> m_devices;
    QHash<int, qsizetype> m_places;
    QHash<int, std::chrono::milliseconds> m_opened; // the plug, until it was opened first
};

} // namespace

QList<ReplayDevice> devicesOf(const Trace &trace)
{
    return Sorter().sort(trace.events);
}

bool sameReport(const QByteArray &left, const QByteArray &right)
{
    const auto used = [](const QByteArray &report) {
        qsizetype size = report.size();
        while (size > 0 && report.at(size - 1) == '\0')
            --size;
        return QByteArrayView(report).first(size);
    };
    return used(left) == used(right);
}

} // namespace probe
