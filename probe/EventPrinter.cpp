// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/EventPrinter.h"

#include "probe/Device.h"
#include "probe/Products.h"
#include "probe/ReportWords.h"

#include <QDateTime>

namespace probe {

namespace {

using Kind = TraceEvent::Kind;

struct KindTexts {
    Kind kind;
    const char *words;
    const char *json;
};
constexpr KindTexts kTexts[] = {
    {Kind::Plug, "plugged in", "plug"},
    {Kind::Unplug, "pulled out", "unplug"},
    {Kind::Open, "opened", "open"},
    {Kind::Denied, "not opened: no permission", "denied"},
    {Kind::Refused, "not opened: busy or not ready", "refused"},
    {Kind::Out, "to the device", "out"},
    {Kind::In, "from the device", "in"},
};

const KindTexts &textsOf(Kind kind)
{
    return *std::find_if(std::begin(kTexts), std::end(kTexts),
                         [=](const KindTexts &row) { return row.kind == kind; });
}

bool isReport(const TraceEvent &event)
{
    return event.kind == Kind::Out || event.kind == Kind::In;
}

QString wordsOf(const TraceEvent &event)
{
    return wordsOf(event.report, event.kind == Kind::Out ? Direction::Out : Direction::In);
}

} // namespace

void EventPrinter::take(const TraceEvent &event)
{
    if (event.kind == Kind::Plug)
        m_productIds.insert(event.device, event.productId);
    const bool isPlug = event.kind == Kind::Plug || event.kind == Kind::Unplug;
    if (m_shown == Shown::Plugs && !isPlug)
        return;
    const int productId = m_productIds.value(event.device);
    if (m_output.isJson())
        printJson(event, productId);
    else
        printWords(event, productId);
}

void EventPrinter::printWords(const TraceEvent &event, int productId) const
{
    const QString head = QDateTime::currentDateTime().toString(QStringLiteral("hh:mm:ss.zzz  "))
        + idText(productId) + QStringLiteral("  ");
    const QString what = QLatin1String(textsOf(event.kind).words);
    if (!isReport(event))
        return m_output.line(
            head + what
            + (event.kind == Kind::Plug ? QStringLiteral(": ") + roleText(productId) : QString()));
    m_output.line(head + what + QStringLiteral(": ") + wordsOf(event) + u'\n' + QString(head.size(), u' ')
                  + bytesText(event.report));
}

void EventPrinter::printJson(const TraceEvent &event, int productId) const
{
    QJsonObject object{
        {QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
        {QStringLiteral("event"), QLatin1String(textsOf(event.kind).json)},
        {QStringLiteral("device"), event.device},
        {QStringLiteral("productId"), idText(productId)},
    };
    if (event.kind == Kind::Plug) {
        object.insert(QStringLiteral("model"), productOf(productId).model);
        object.insert(QStringLiteral("role"), productOf(productId).role);
    }
    if (isReport(event)) {
        object.insert(QStringLiteral("report"), QString::fromLatin1(event.report.toHex()));
        object.insert(QStringLiteral("words"), wordsOf(event));
    }
    m_output.object(object);
}

} // namespace probe
