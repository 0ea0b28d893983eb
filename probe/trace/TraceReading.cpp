// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Reads traces that strangers sent. Nothing is taken on trust: sizes are bounded before anything is kept,
// numbers before they are used, and what stands in a message is made printable.
#include "probe/trace/TraceWords.h"

#include <QFile>
#include <QSet>

#include <algorithm>
#include <limits>

namespace probe {

using namespace TraceWords;

namespace {

constexpr int kShownCharacters = 40;
constexpr int kTimeDecimals = 3;
constexpr int kLargestSecond = 9'999'999;
constexpr int kLargestDevice = 999'999;

/// A word of the file as a message may show it.
QString shown(QByteArrayView word)
{
    QString text;
    for (const char byte : word.first(std::min<qsizetype>(word.size(), kShownCharacters)))
        text += byte > ' ' && byte <= '~' ? QLatin1Char(byte) : QLatin1Char('?');
    if (word.size() > kShownCharacters)
        text += QStringLiteral("...");
    return u'"' + text + u'"';
}

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

bool isHexDigit(char byte)
{
    return isDigit(byte) || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

/// Digits only: no sign, no blank, nothing above \a largest.
std::optional<int> decimal(QByteArrayView word, int largest)
{
    int number = 0;
    for (const char byte : word) {
        if (!isDigit(byte) || number > (std::numeric_limits<int>::max() - 9) / 10)
            return std::nullopt;
        number = number * 10 + (byte - '0');
    }
    return word.isEmpty() || number > largest ? std::nullopt : std::optional(number);
}

/// Exactly \a digits of them.
std::optional<int> hexadecimal(QByteArrayView word, int digits)
{
    if (word.size() != digits || !std::all_of(word.begin(), word.end(), isHexDigit))
        return std::nullopt;
    return word.toByteArray().toInt(nullptr, 16);
}

std::optional<std::chrono::milliseconds> timeOf(QByteArrayView word)
{
    const qsizetype point = word.indexOf('.');
    if (point < 0 || word.size() - point - 1 != kTimeDecimals)
        return std::nullopt;
    const auto seconds = decimal(word.first(point), kLargestSecond);
    const auto rest = decimal(word.sliced(point + 1), 999);
    if (!seconds || !rest)
        return std::nullopt;
    return std::chrono::seconds(*seconds) + std::chrono::milliseconds(*rest);
}

const KindWord *kindNamed(QByteArrayView word)
{
    for (const KindWord &row : kKinds) {
        if (word == QByteArrayView(row.word))
            return &row;
    }
    return nullptr;
}

QList<QByteArrayView> wordsOf(QByteArrayView line)
{
    QList<QByteArrayView> words;
    qsizetype begin = 0;
    for (qsizetype at = 0; at <= line.size(); ++at) {
        if (at < line.size() && line.at(at) != ' ' && line.at(at) != '\t')
            continue;
        if (at > begin)
            words.append(line.sliced(begin, at - begin));
        begin = at + 1;
    }
    return words;
}

/// Takes line after line. What it answers is what is wrong with the line; null when nothing is.
class LineReader {
public:
    explicit LineReader(QList<TraceEvent> &events)
        : m_events(events)
    {
    }

    QString take(QByteArrayView line)
    {
        if (line.size() > Trace::kLongestLine)
            return QStringLiteral("longer than %1 bytes").arg(Trace::kLongestLine);
        const QList<QByteArrayView> words = wordsOf(line);
        if (words.isEmpty() || words.first().startsWith('#'))
            return {};
        return m_begun ? takeEvent(words) : takeFirstLine(words);
    }

    bool begun() const { return m_begun; }

private:
    QString takeFirstLine(const QList<QByteArrayView> &words)
    {
        if (words.size() != 2 || words.at(0) != QByteArrayView(kMark))
            return QStringLiteral("a trace begins with \"%1 %2\"").arg(QLatin1String(kMark)).arg(kVersion);
        if (decimal(words.at(1), kLargestDevice) != kVersion)
            return QStringLiteral("a trace of version %1; this program reads version %2")
                .arg(shown(words.at(1)), QString::number(kVersion));
        m_begun = true;
        return {};
    }

    QString takeEvent(const QList<QByteArrayView> &words)
    {
        if (m_events.size() == Trace::kMostEvents)
            return QStringLiteral("more than %1 events").arg(Trace::kMostEvents);
        if (words.size() < 3)
            return QStringLiteral("a line has a time, a word and the number of a device");
        TraceEvent event;
        const auto time = timeOf(words.at(0));
        if (!time)
            return QStringLiteral("no time in seconds with three decimals: ") + shown(words.at(0));
        if (*time < m_time)
            return QStringLiteral("the time goes backwards");
        const KindWord *const kind = kindNamed(words.at(1));
        if (!kind)
            return QStringLiteral("no such event: ") + shown(words.at(1));
        const auto device = decimal(words.at(2), kLargestDevice);
        if (!device || *device == 0)
            return QStringLiteral("no number of a device: ") + shown(words.at(2));
        event.time = *time;
        event.kind = kind->kind;
        event.device = *device;
        const QString complaint = takeRest(event, words.sliced(3));
        if (complaint.isNull()) {
            m_time = *time;
            m_events.append(event);
        }
        return complaint;
    }

    QString takeRest(TraceEvent &event, const QList<QByteArrayView> &words)
    {
        if (event.kind == TraceEvent::Kind::Plug)
            return takePlug(event, words);
        if (!m_plugged.contains(event.device))
            return QStringLiteral("device %1 is not plugged in").arg(event.device);
        if (event.kind == TraceEvent::Kind::Out || event.kind == TraceEvent::Kind::In)
            return takeReport(event, words);
        if (!words.isEmpty())
            return QStringLiteral("a word too many: ") + shown(words.first());
        if (event.kind == TraceEvent::Kind::Unplug)
            m_plugged.remove(event.device);
        return {};
    }

    QString takePlug(TraceEvent &event, const QList<QByteArrayView> &words)
    {
        if (words.size() != 2)
            return QStringLiteral("\"plug\" takes a device, a vendor ID and a product ID");
        for (const QByteArrayView word : words) {
            if (!hexadecimal(word, 4))
                return QStringLiteral("no ID of four hexadecimal digits: ") + shown(word);
        }
        if (m_known.contains(event.device))
            return QStringLiteral("device %1 was plugged in before: give it a new number").arg(event.device);
        if (m_known.size() == Trace::kMostDevices)
            return QStringLiteral("more than %1 devices").arg(Trace::kMostDevices);
        event.vendorId = *hexadecimal(words.at(0), 4);
        event.productId = *hexadecimal(words.at(1), 4);
        m_known.insert(event.device);
        m_plugged.insert(event.device);
        return {};
    }

    QString takeReport(TraceEvent &event, const QList<QByteArrayView> &words)
    {
        for (const QByteArrayView word : words) {
            const auto byte = hexadecimal(word.first(std::min<qsizetype>(word.size(), 2)), 2);
            const bool isRun = word.size() > 2 && word.at(2) == kRunSign;
            const auto count = isRun ? decimal(word.sliced(3), int(Trace::kLongestReport))
                                     : std::optional<int>(word.size() == 2 ? 1 : 0);
            if (!byte || !count || *count == 0)
                return QStringLiteral("no byte of two hexadecimal digits: ") + shown(word);
            if (event.report.size() + *count > Trace::kLongestReport)
                return QStringLiteral("a report of more than %1 bytes").arg(Trace::kLongestReport);
            event.report.append(*count, char(*byte));
        }
        m_traffic += event.report.size();
        if (m_traffic > Trace::kMostTraffic)
            return QStringLiteral("more than %1 MiB of reports").arg(Trace::kMostTraffic / 1024 / 1024);
        return event.report.isEmpty() ? QStringLiteral("a report without a byte") : QString();
    }

    QList<TraceEvent> &m_events;
    bool m_begun = false;
    std::chrono::milliseconds m_time{0};
    qsizetype m_traffic = 0; // bytes of all reports
    QSet<int> m_known;
    QSet<int> m_plugged;
};

/// The next line, without its end; \a text is left with what follows.
QByteArrayView takeLine(QByteArrayView &text)
{
    const qsizetype end = text.indexOf('\n');
    QByteArrayView line = end < 0 ? text : text.first(end);
    text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
    if (line.endsWith('\r'))
        line.chop(1); // passed on by mail from a system that ends lines so
    return line;
}

std::optional<Trace> fail(QString *error, const QString &where, const QString &what)
{
    *error = where + QStringLiteral(": ") + what;
    return std::nullopt;
}

} // namespace

std::optional<Trace> Trace::load(const QString &file, QString *error)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return fail(error, file, source.errorString());
    // One byte more than allowed tells a file that is too large, also where no size is known beforehand.
    const QByteArray text = source.read(kLargestFile + 1);
    if (source.error() != QFileDevice::NoError)
        return fail(error, file, source.errorString());
    return parse(text, file, error);
}

std::optional<Trace> Trace::parse(const QByteArray &text, const QString &file, QString *error)
{
    if (text.size() > kLargestFile)
        return fail(error, file, QStringLiteral("larger than %1 MiB").arg(kLargestFile / 1024 / 1024));
    Trace trace{file, {}};
    LineReader reader(trace.events);
    QByteArrayView rest(text);
    for (int number = 1; !rest.isEmpty(); ++number) {
        const QString complaint = reader.take(takeLine(rest));
        if (!complaint.isNull())
            return fail(error, QStringLiteral("%1:%2").arg(file, QString::number(number)), complaint);
    }
    if (!reader.begun())
        return fail(error, file, QStringLiteral("empty"));
    return trace;
}

} // namespace probe
