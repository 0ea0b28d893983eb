// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/trace/ReplayScript.h"

#include <QHash>
#include <QQueue>

namespace probe {

namespace {

using Kind = TraceEvent::Kind;

// Where a report, its ID in front, says what it is about: the operation and the first register.
constexpr qsizetype kSubjectAt = 5;
constexpr qsizetype kSubjectSize = 3;

/// Empty for a report that is too short to be about anything.
QByteArray subjectOf(const QByteArray &report)
{
    return report.size() < kSubjectAt + kSubjectSize ? QByteArray() : report.mid(kSubjectAt, kSubjectSize);
}

/// The questions to one device that have no answer yet, by what they are about.
class OpenQuestions {
public:
    void add(const QByteArray &request, qsizetype exchange)
    {
        const QByteArray subject = subjectOf(request);
        if (!subject.isEmpty())
            m_bySubject[subject].enqueue(exchange);
    }

    /// Takes the oldest one that \a answer answers; null when there is none.
    ReplayExchange *take(QList<ReplayExchange> &exchanges, const QByteArray &answer)
    {
        const auto open = m_bySubject.find(subjectOf(answer));
        while (open != m_bySubject.end() && !open->isEmpty()) {
            ReplayExchange &exchange = exchanges[open->dequeue()];
            if (exchange.answers.isEmpty())
                return &exchange;
        }
        return nullptr;
    }

private:
    QHash<QByteArray, QQueue<qsizetype>> m_bySubject;
};

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
            m_questions[event.device].add(event.report, device.exchanges.size());
            device.exchanges.append({event.time, event.report, {}});
            return;
        case Kind::In:
            takeAnswer(event, device);
            return;
        }
    }

    void takeAnswer(const TraceEvent &event, ReplayDevice &device)
    {
        ReplayExchange *exchange = m_questions[event.device].take(device.exchanges, event.report);
        if (!exchange && !device.exchanges.isEmpty())
            exchange = &device.exchanges.last();
        if (exchange)
            exchange->answers.append({event.time - exchange->time, event.report});
        else
            device.greetings.append({event.time - m_opened.value(event.device), event.report});
    }

    QList<ReplayDevice> m_devices;
    QHash<int, qsizetype> m_places;
    QHash<int, OpenQuestions> m_questions;
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
