// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <chrono>
#include <optional>

namespace rig {

/// A kind of word that fills a gap in a statement's form.
struct WordKind {
    const char *name; ///< as the form writes it, between "<" and ">"
    bool (*accepts)(const QString &word);
    QString (*expectation)(); ///< "a duration such as 10s or 500ms", for messages
};

/// What a flash holds that is just what the server sent, whatever that was.
constexpr char kServed[] = "served";

/// Nothing when no kind has that name: a mistake in the grammar.
const WordKind *wordKind(const QString &name);

std::optional<std::chrono::milliseconds> durationFrom(const QString &word); ///< "500ms", "10s", "2m"
std::optional<int> timesFrom(const QString &word); ///< "once", "3x"
std::optional<qint64> sizeFrom(const QString &word); ///< "512KiB", "2MiB", in bytes

/// The words of a line: parts between blanks, or in double quotes, where a backslash stands before a quote, a
/// backslash or an "n" for a line feed. Everything from a "#" that begins a word is a comment. \a error says
/// what is wrong with the quotes; it is empty when the line is sound.
struct LineWords {
    QStringList words;
    QString error;
};
LineWords splitLine(const QString &line);

} // namespace rig
