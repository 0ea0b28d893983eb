// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile texts of the update server, on their way to the screen. The first byte of an input says how the
// rest is a text, and how often it is repeated.
#include "panel/ForeignText.h"
#include "tests/fuzz/Input.h"

#include <cstring>

using namespace QuillonFirmwareUpgrade;
using fuzz::require;

namespace {

constexpr quint8 kUtf16 = 0x01; ///< taken as it is, so that halves of characters come up too
/// Made longer than anything that is shown.
constexpr quint8 kVersionLong = 0x02;
constexpr quint8 kNotesLong = 0x1C; ///< these together: it takes long

constexpr qsizetype kLongestWord = 100;
constexpr QChar kInvisibleBreak(0x200B);

QString textOf(quint8 manner, const QByteArray &bytes)
{
    QString text = QString::fromUtf8(bytes);
    if (manner & kUtf16) {
        text = QString(bytes.size() / 2, u'\0');
        std::memcpy(text.data(), bytes.constData(), std::size_t(text.size()) * 2);
    }
    qsizetype wanted = 0;
    if (manner & kVersionLong)
        wanted = ForeignText::kLongestVersion;
    if ((manner & kNotesLong) == kNotesLong)
        wanted = ForeignText::kLongestNotes;
    return text.isEmpty() ? text : text.repeated(wanted / text.size() + 1);
}

bool isPlain(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        return (character >= u' ' && character <= u'~') || (character >= u'一' && character <= u'龥');
    });
}

/// Steers the terminal or the direction of writing, or ends a line in a way that was to be a line feed.
bool isTrick(QChar character)
{
    const char16_t code = character.unicode();
    const bool control = code < 0x20 || (code >= 0x7F && code <= 0x9F);
    const bool override = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return (control && code != u'\n' && code != u'\t') || override || code == 0x2028 || code == 0x2029;
}

bool isWhole(const QString &text)
{
    return text.isValidUtf16() && !text.contains(QChar::ReplacementCharacter);
}

void checkShown(const QString &text, const QString &shown, qsizetype limit)
{
    require(std::none_of(shown.begin(), shown.end(), isTrick), "what is shown steers nothing");
    require(shown.isValidUtf16(), "what is shown is made of whole characters");
    require(!isWhole(text) || isWhole(shown), "no character is cut in two");
    require(text.size() <= limit || shown.endsWith(u'…'), "what was cut says so");
    require(text.size() > limit || !isPlain(text) || shown == text, "a short text of letters stays as it is");
}

/// Words wider than the box are given places to break at, which nobody sees and nobody counts.
bool isOfShortWords(const QString &text)
{
    qsizetype length = 0;
    return std::all_of(text.begin(), text.end(), [&length](QChar character) {
        length = character.isSpace() ? 0 : length + 1;
        return length <= kLongestWord;
    });
}

void checkNotes(const QString &text)
{
    const QString notes = ForeignText::shownNotes(text);
    require(notes.size() <= ForeignText::kLongestNotes * (kLongestWord + 1) / kLongestWord,
            "no more is shown than fits");
    int marks = 0;
    for (const QChar character : notes) {
        if (character.isMark())
            ++marks;
        else if (character.category() != QChar::Other_Format) // a joiner does not part a mark from its letter
            marks = 0;
        require(marks <= 4, "marks are not heaped upon a letter");
    }
    QString unbroken = notes;
    if (!text.contains(kInvisibleBreak))
        unbroken.remove(kInvisibleBreak);
    require(unbroken == notes || !isOfShortWords(text), "short words are left alone");
    checkShown(text, unbroken, ForeignText::kLongestNotes);
}

void checkVersion(const QString &text)
{
    const QString version = ForeignText::shownVersion(text);
    require(version.size() <= ForeignText::kLongestVersion, "no more is shown than fits");
    require(!version.contains(u'\n') && !version.contains(u'\t'), "a version is one line");
    require(ForeignText::shownVersion(version) == version, "a version that can be shown is shown");
    checkShown(text, version, ForeignText::kLongestVersion);
}

void checkFileName(const QString &text)
{
    const QString name = ForeignText::inFileName(text);
    require(name.size() == text.size(), "a name is as long as the text");
    require(std::none_of(name.begin(), name.end(),
                         [](QChar character) {
                             return isTrick(character) || QStringView(u"/\\:*?\"<>|\n\t").contains(character);
                         }),
            "a name leads to no other folder");
    require(ForeignText::inFileName(name) == name, "a name is one");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const quint8 manner = input.takeByte();
    const QString text = textOf(manner, input.takeRest());
    checkNotes(text);
    checkVersion(text);
    checkFileName(text);
    return 0;
}
