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

/// The last line, trimmed; none when \a file holds no line at all. An end of line that closes the file starts no further
/// line. Reads at most the end of the file: a line that is longer than any report comes back empty.
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

/// What a trimmed line says. A result without a number has the status 0, which is a failure.
Report judge(const QString &line);

} // namespace ProgressFile
