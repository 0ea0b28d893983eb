// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "panel/ForeignText.h"

#include <QList>

#include <algorithm>

namespace QuillonFirmwareUpgrade::ForeignText {

namespace {
constexpr QChar kEllipsis(u'…');
/// Vietnamese, Hebrew and Thai need three marks on a letter; dozens of them would cover the lines around it.
constexpr int kMarksOnALetter = 4;
/// Wider than the box.
constexpr qsizetype kLongestWord = 100;
constexpr QChar kInvisibleBreak(0x200b); // zero width space
/// How far before its end a text is cut, at most, so that no word is cut in two.
constexpr qsizetype kWordEndDistance = 200;

struct Range {
    char32_t first;
    char32_t last;
};

/// Characters without a shape that steer what stands around them, or that a text document keeps for itself.
/// Those that join and part the letters of a script, or the pieces of a picture, are none of these.
constexpr Range kLeftOut[] = {
    {0x0000, 0x0008},   {0x000b, 0x001f}, {0x007f, 0x009f}, // controls, but for tab and line feed
    {0x202a, 0x202e},   {0x2066, 0x2069}, // embed, override and isolate a direction of writing
    {0x2060, 0x2065},   {0x206a, 0x206f}, {0xfeff, 0xfeff}, // never seen
    {0xfff9, 0xfffc}, // annotations, and where an object would stand
    {0xe0000, 0xe007f}, // tags
};

bool isIn(const Range &range, char32_t character)
{
    return character >= range.first && character <= range.last;
}

bool isLeftOut(char32_t character)
{
    return QChar::isNonCharacter(character)
        || std::any_of(std::begin(kLeftOut), std::end(kLeftOut),
                       [character](const Range &range) { return isIn(range, character); });
}

/// Joiners and their like, which belong to the letters around them.
bool isInvisible(char32_t character)
{
    return QChar::category(character) == QChar::Other_Format;
}

/// Every way to end a line becomes a line feed.
QString withLineFeeds(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (const QChar end : {QChar(u'\r'), QChar(u'\f'), QChar(u'\v'), QChar(u'\u0085'),
                            QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)})
        text.replace(end, u'\n');
    return text;
}

QString withoutTricks(const QString &text)
{
    const QString lines = withLineFeeds(text);
    QString plain;
    plain.reserve(lines.size());
    int marks = 0;
    for (const char32_t character : QStringView(lines).toUcs4()) {
        if (isLeftOut(character))
            continue;
        // A joiner between two marks would not part them from their letter.
        if (QChar::isMark(character))
            ++marks;
        else if (!isInvisible(character))
            marks = 0;
        if (marks <= kMarksOnALetter)
            plain += QChar::fromUcs4(character);
    }
    return plain;
}

/// Where to end \a text, at \a limit or before, so that a line ends there, or at least a word.
qsizetype endOfWord(QStringView text, qsizetype limit)
{
    qsizetype end = limit;
    const qsizetype earliest = std::max(qsizetype(0), limit - kWordEndDistance);
    while (end > earliest && !text.at(end - 1).isSpace())
        --end;
    if (end == earliest)
        return text.at(limit - 1).isHighSurrogate() ? limit - 1 : limit;
    while (end > 0 && text.at(end - 1).isSpace())
        --end;
    return end;
}

/// Whether a line may begin with \a character without looking odd, more or less.
bool mayBeginALine(char32_t character)
{
    return !QChar::isMark(character) && !isInvisible(character) && !QChar::isPunct(character);
}

/// Words wider than the box can be broken at any letter, but searching them for the best one takes quadratic
/// time.
QString withBreaksInLongWords(const QString &text)
{
    QString breakable;
    breakable.reserve(text.size() + text.size() / kLongestWord);
    qsizetype wordLength = 0;
    for (const char32_t character : QStringView(text).toUcs4()) {
        wordLength = QChar::isSpace(character) ? 0 : wordLength + 1;
        if ((wordLength > kLongestWord && mayBeginALine(character)) || wordLength > 2 * kLongestWord) {
            breakable += kInvisibleBreak;
            wordLength = 1;
        }
        breakable += QChar::fromUcs4(character);
    }
    return breakable;
}

/// Looks at no more of \a text than can be shown of it, however long it is.
QString shown(const QString &text, qsizetype limit)
{
    QString beginning = text.left(limit);
    if (text.size() > limit && beginning.back().isHighSurrogate())
        beginning.chop(1);
    const QString plain = withoutTricks(beginning);
    if (text.size() <= limit)
        return plain;
    if (plain.isEmpty())
        return kEllipsis;
    return plain.left(endOfWord(plain, std::min(plain.size(), limit - 1))) + kEllipsis;
}
} // namespace

QString shownNotes(const QString &notes)
{
    return withBreaksInLongWords(shown(notes, kLongestNotes));
}

QString shownVersion(const QString &version)
{
    QString line = shown(version, kLongestVersion);
    for (QChar &character : line) {
        if (character.isSpace())
            character = u' ';
    }
    return line;
}

QString inFileName(const QString &version)
{
    QString name = version;
    for (QChar &character : name) {
        if (!character.isLetterOrNumber() && !QStringView(u".-_ ").contains(character))
            character = u'_';
    }
    return name;
}

} // namespace QuillonFirmwareUpgrade::ForeignText
