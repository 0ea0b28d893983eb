// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ScenarioWords.h"

#include "rig/Fault.h"
#include "rig/FlashContents.h"
#include "rig/Identity.h"
#include "rig/ScreenRecognizer.h"

#include <QRegularExpression>
#include <QVersionNumber>

#include <algorithm>

namespace rig {

using std::chrono::milliseconds;

namespace {

constexpr char kBricked[] = "bricked";
constexpr int kMaxVersionPart = 0xFFFF;

// A shape that a whole word has.
class Shape {
public:
    explicit Shape(const char *pattern)
        : m_expression(QRegularExpression::anchoredPattern(QLatin1StringView(pattern)))
    {
    }

    bool fits(const QString &word) const { return match(word).hasMatch(); }
    QRegularExpressionMatch match(const QString &word) const { return m_expression.match(word); }

private:
    QRegularExpression m_expression;
};

bool isVersion(const QString &word)
{
    static const Shape shape("\\d{1,5}\\.\\d{1,5}\\.\\d{1,5}");
    if (!shape.fits(word))
        return false;
    const QList<int> parts = QVersionNumber::fromString(word).segments();
    return std::all_of(parts.begin(), parts.end(), [](int part) { return part <= kMaxVersionPart; });
}

bool isProductId(const QString &word)
{
    static const Shape shape("[0-9a-f]{4}");
    return shape.fits(word);
}

bool isEvent(const QString &word)
{
    static const Shape shape("(pc|otg)-(image|tool|ended|appeared|read)");
    return shape.fits(word);
}

bool isName(const QString &word)
{
    static const Shape shape("[A-Za-z0-9_-]+");
    return shape.fits(word);
}

bool isFirmware(const QString &word)
{
    return word == QLatin1StringView(kBricked) || isVersion(word);
}

QStringList contentsWords()
{
    return QStringList{QLatin1StringView(kServed)} + contentsNames();
}

bool isContents(const QString &word)
{
    return contentsWords().contains(word) || isVersion(word);
}

template <int Low, int High> bool isNumber(const QString &word)
{
    bool ok = false;
    const int number = word.toInt(&ok);
    return ok && number >= Low && number <= High;
}

QString screens()
{
    return QStringLiteral("a screen (") + screenNames().join(QStringLiteral(", ")) + QLatin1Char(')');
}

QString quoted(const QStringList &words)
{
    return QLatin1Char('"') + words.join(QStringLiteral("\" or \"")) + QLatin1Char('"');
}

QString quoted(std::initializer_list<const char *> words)
{
    QStringList list;
    for (const char *word : words)
        list.append(QLatin1StringView(word));
    return quoted(list);
}

QString contents()
{
    return QStringLiteral("a version such as 1.2.0 or ") + quoted(contentsWords());
}

const QList<WordKind> &kinds()
{
    static const QList<WordKind> table{
        {"chip", [](const QString &w) { return w == u"pc" || w == u"otg"; },
         [] {
             return quoted({"pc", "otg"});
         }},
        {"model", [](const QString &w) { return modelNames().contains(w); },
         [] { return quoted(modelNames()); }},
        {"language", [](const QString &w) { return w == u"zh" || w == u"en"; },
         [] {
             return quoted({"zh", "en"});
         }},
        {"requests", [](const QString &w) { return w == u"queries" || w == u"downloads"; },
         [] {
             return quoted({"queries", "downloads"});
         }},
        {"button", [](const QString &w) { return w == u"upgrade" || w == u"retry" || w == u"close"; },
         [] {
             return quoted({"upgrade", "retry", "close"});
         }},
        {"version", isVersion, [] { return QStringLiteral("a version such as 1.2.0"); }},
        {"firmware", isFirmware, [] { return QStringLiteral("a version such as 1.2.0 or \"bricked\""); }},
        {"contents", isContents, contents},
        {"screen", [](const QString &w) { return screenNames().contains(w); }, screens},
        {"fault", [](const QString &w) { return faultNamed(w).has_value(); },
         [] { return QStringLiteral("the name of a fault"); }},
        {"times", [](const QString &w) { return timesFrom(w).has_value(); },
         [] { return QStringLiteral("\"once\" or a count such as 3x"); }},
        {"duration", [](const QString &w) { return durationFrom(w).has_value(); },
         [] { return QStringLiteral("a duration such as 10s or 500ms"); }},
        {"size", [](const QString &w) { return sizeFrom(w).has_value(); },
         [] { return QStringLiteral("a size such as 512KiB or 2MiB"); }},
        {"percent", isNumber<0, 100>, [] { return QStringLiteral("a number from 0 to 100"); }},
        {"count", isNumber<0, 1000000>, [] { return QStringLiteral("a count"); }},
        {"pid", isProductId,
         [] { return QStringLiteral("a product ID of four hexadecimal digits such as 000e"); }},
        {"event", isEvent,
         [] { return QStringLiteral("an event (pc- or otg- and image, tool, ended, appeared or read)"); }},
        {"name", isName, [] { return QStringLiteral("a name of letters, digits, \"-\" and \"_\""); }},
        {"text", [](const QString &) { return true; }, [] { return QStringLiteral("a text"); }},
    };
    return table;
}

bool isEscape(const QString &line, qsizetype at)
{
    return line.at(at) == u'\\' && at + 1 < line.size();
}

// Reads a quoted word that begins behind the quote at position at; leaves at behind the closing one.
std::optional<QString> takeQuoted(const QString &line, qsizetype &at)
{
    QString word;
    for (++at; at < line.size(); ++at) {
        if (line.at(at) == u'"') {
            ++at;
            return word;
        }
        if (!isEscape(line, at))
            word += line.at(at);
        else if (const QChar meant = line.at(++at); meant == u'n')
            word += u'\n';
        else
            word += meant;
    }
    return {};
}

QString takeBare(const QString &line, qsizetype &at)
{
    const qsizetype from = at;
    while (at < line.size() && !line.at(at).isSpace())
        ++at;
    return line.mid(from, at - from);
}

} // namespace

const WordKind *wordKind(const QString &name)
{
    const auto found = std::find_if(kinds().begin(), kinds().end(), [&name](const WordKind &kind) {
        return name == QLatin1StringView(kind.name);
    });
    return found == kinds().end() ? nullptr : &*found;
}

std::optional<milliseconds> durationFrom(const QString &word)
{
    static const Shape shape("(\\d{1,6})(ms|s|m)");
    const QRegularExpressionMatch match = shape.match(word);
    if (!match.hasMatch())
        return {};
    const int number = match.captured(1).toInt();
    if (match.captured(2) == u"ms")
        return milliseconds(number);
    return match.captured(2) == u"s" ? milliseconds(std::chrono::seconds(number))
                                     : milliseconds(std::chrono::minutes(number));
}

std::optional<int> timesFrom(const QString &word)
{
    if (word == u"once")
        return 1;
    static const Shape shape("[1-9]\\d{0,4}x");
    return shape.fits(word) ? std::optional(word.chopped(1).toInt()) : std::nullopt;
}

std::optional<qint64> sizeFrom(const QString &word)
{
    static const Shape shape("(\\d{1,6})(KiB|MiB)");
    const QRegularExpressionMatch match = shape.match(word);
    if (!match.hasMatch())
        return {};
    constexpr qint64 kKibibyte = 1024;
    const qint64 unit = match.captured(2) == u"MiB" ? kKibibyte * kKibibyte : kKibibyte;
    return match.captured(1).toLongLong() * unit;
}

LineWords splitLine(const QString &line)
{
    LineWords result;
    qsizetype at = 0;
    while (at < line.size()) {
        if (line.at(at).isSpace()) {
            ++at;
            continue;
        }
        if (line.at(at) == u'#')
            break;
        if (line.at(at) != u'"') {
            result.words.append(takeBare(line, at));
        } else if (const auto word = takeQuoted(line, at)) {
            result.words.append(*word);
        } else {
            result.error = QStringLiteral("a quote is not closed");
            break;
        }
    }
    return result;
}

} // namespace rig
