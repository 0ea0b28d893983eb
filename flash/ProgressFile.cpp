// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "flash/ProgressFile.h"

#include "system/SharedFile.h"

#include <QByteArrayView>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QStringView>

#include <algorithm>

namespace ProgressFile {

namespace {
/// A report takes a few bytes; what lies further back than this is not read, however large the file is.
constexpr qint64 kTail = qint64(64) * 1024;

/// A tool that writes on between the question for the file's size and the reading adds no more.
constexpr qint64 kAddedMeanwhile = 64;

QString folder()
{
    return QDir::homePath() + QStringLiteral("/AppData/Roaming/OrvikQuillon2x2");
}

QString fileIn(const QString &folder)
{
    return folder + QStringLiteral("/Firmware_bin.txt");
}
} // namespace

QString path()
{
    return fileIn(folder());
}

QString pathWithFolder()
{
    const QString home = folder();
    if (!QFileInfo::exists(home))
        QDir().mkpath(home);
    return fileIn(home);
}

QString clear(const QString &path)
{
    return QFile::remove(path) ? QString() : fingerprint(path);
}

QString fingerprint(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return QString();
    return QStringLiteral("%1 bytes at %2").arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
}

Reading read(const QString &path, const QString &leftover)
{
    using Outcome = Reading::Outcome;
    if (!leftover.isEmpty() && fingerprint(path) == leftover)
        return {};
    QFile file(path);
    if (!SharedFile::openForReading(file)) {
        if (SharedFile::isHeld(path))
            return {Outcome::Held, QString()};
        // Closed by the other program between the two questions, or not there at all.
        if (!SharedFile::openForReading(file))
            return {};
    }
    const std::optional<QString> line = lastLine(file);
    return line ? Reading{Outcome::Line, *line} : Reading{Outcome::Empty, QString()};
}

std::optional<QString> lastLine(QIODevice &file)
{
    const qint64 size = file.size();
    const bool isWhole = size <= kTail;
    if (!isWhole)
        file.seek(size - kTail);
    const QByteArray read = file.read(std::min(size + kAddedMeanwhile, kTail));
    if (read.isEmpty())
        return std::nullopt;
    QByteArrayView tail(read);
    if (tail.endsWith('\n'))
        tail.chop(1);
    if (tail.isEmpty()) // Qt 6.8 would look for the line's end beyond it
        return QString();
    const qsizetype lineEnd = tail.lastIndexOf('\n');
    if (lineEnd < 0 && !isWhole)
        return QString();
    return QString::fromUtf8(tail.sliced(lineEnd + 1)).trimmed();
}

Report judge(const QString &line)
{
    if (line.startsWith(QStringLiteral("success"))) {
        const QStringList fields = line.split(u' ', Qt::SkipEmptyParts);
        return {Report::Kind::Result, fields.value(1).toInt()};
    }
    if (!line.endsWith(u'%'))
        return {};
    bool isNumber = false;
    const int percentage = QStringView(line).chopped(1).toInt(&isNumber);
    return isNumber ? Report{Report::Kind::Percentage, percentage} : Report{};
}

bool hasDoneItsWork(const QString &line)
{
    const Report report = judge(line);
    return line == kAllWritten || (report.kind == Report::Kind::Result && report.value == kSuccess);
}

} // namespace ProgressFile
