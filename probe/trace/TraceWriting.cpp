// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// How an event becomes a line of a trace.
#include "probe/trace/TraceWords.h"

namespace probe {

using namespace TraceWords;

namespace {

QByteArray wordOf(TraceEvent::Kind kind)
{
    for (const KindWord &row : kKinds) {
        if (row.kind == kind)
            return row.word;
    }
    return {};
}

QByteArray seconds(std::chrono::milliseconds time)
{
    const qint64 count = time.count();
    return QByteArray::number(count / 1000) + '.' + QByteArray::number(count % 1000).rightJustified(3, '0');
}

QByteArray fourHexDigits(int number)
{
    return QByteArray::number(number, 16).rightJustified(4, '0');
}

qsizetype runLength(const QByteArray &bytes, qsizetype from)
{
    qsizetype end = from;
    while (end < bytes.size() && bytes.at(end) == bytes.at(from))
        ++end;
    return end - from;
}

QByteArray hexWords(const QByteArray &report)
{
    QByteArray text;
    for (qsizetype at = 0; at < report.size();) {
        const qsizetype run = runLength(report, at);
        const qsizetype taken = run < kShortestRun ? 1 : run;
        text += ' ' + report.sliced(at, 1).toHex();
        if (taken > 1)
            text += kRunSign + QByteArray::number(taken);
        at += taken;
    }
    return text;
}

} // namespace

QByteArray Trace::firstLine()
{
    return kMark + QByteArray(" ") + QByteArray::number(kVersion) + '\n';
}

QByteArray Trace::lineOf(const TraceEvent &event)
{
    QByteArray line = seconds(event.time) + ' ' + wordOf(event.kind) + ' ' + QByteArray::number(event.device);
    if (event.kind == TraceEvent::Kind::Plug)
        line += ' ' + fourHexDigits(event.vendorId) + ' ' + fourHexDigits(event.productId);
    return line + hexWords(event.report) + '\n';
}

} // namespace probe
