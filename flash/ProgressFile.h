// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

#include <optional>

class QIODevice;

/// The small text file in which the flashing tool reports. Only its last line counts.
namespace ProgressFile {

/// Where the tool writes it, below the user's home; nothing is created.
QString path();

/// path(), with its folder created.
QString pathWithFolder();

/// Removes the file at \a path, so that what an earlier run reported is not taken for the next one's. On
/// Windows another program may keep it from being removed: then the fingerprint of what is still there, else
/// an empty text.
QString clear(const QString &path);

/// Tells a file that has not been written since from one that has; empty without a file.
QString fingerprint(const QString &path);

/// What can be read at the moment.
struct Reading {
    enum class Outcome {
        None, ///< there is no file, or it cannot be opened
        Held, ///< another program keeps everyone out of it, which lasts for a moment
        Empty, ///< the file holds no line
        Line
    };
    Outcome outcome = Outcome::None;
    QString line; ///< as lastLine()
};

/// Reads the file at \a path, whoever else has it open, and closes it at once. While its fingerprint is
/// \a leftover, as clear() gave it, there is no file yet.
Reading read(const QString &path, const QString &leftover = QString());

/// The last line, trimmed; none when \a file holds no line at all. An end of line that closes the file starts
/// no further line. Reads at most the end of the file: a line that is longer than any report comes back
/// empty.
std::optional<QString> lastLine(QIODevice &file);

struct Report {
    enum class Kind {
        Unknown, ///< nothing to act on
        Percentage, ///< the share of the image that is written
        Result ///< the tool's verdict
    };
    Kind kind = Kind::Unknown;
    int value = 0; ///< the percentage, or the status (kSuccess or a failure)
};

constexpr int kSuccess = 1;

/// The last line of a tool that has written everything, but has not told its verdict.
const inline QString kAllWritten = QStringLiteral("100%");

/// What a trimmed line says. A result without a number has the status 0, which is a failure.
Report judge(const QString &line);

/// Whether a tool whose last line this is has done its work, be it that it says so or that it merely stands
/// there.
bool hasDoneItsWork(const QString &line);

} // namespace ProgressFile
