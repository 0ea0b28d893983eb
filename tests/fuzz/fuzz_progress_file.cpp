// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile progress files: what the flashing tool, or somebody in its place, may leave. The first byte of an
// input says what lies before the rest of it in the file; the rest is read as a file, and each of its lines
// as what one poll finds, the longer the line the later.
#include "flash/ProgressFile.h"
#include "flash/ProgressScale.h"
#include "flash/StallRule.h"
#include "tests/fuzz/Files.h"

#include <QBuffer>
#include <QDateTime>
#include <QTimeZone>

using namespace QuillonFirmwareUpgrade;
using fuzz::require;

namespace {

constexpr quint8 kInAFile = 0x80; ///< on disk, too
constexpr quint8 kOldLines = 1; ///< a long file of lines stands before
constexpr quint8 kEndlessLine = 2; ///< a line that is longer than what is read begins before
constexpr qsizetype kLong = qsizetype(64) * 1024;

QByteArray fileOf(quint8 before, const QByteArray &rest)
{
    if (before == kOldLines)
        return QByteArray("7%\r\n").repeated(kLong / 4) + rest;
    return before == kEndlessLine ? QByteArray(kLong + 1, '7') + rest : rest;
}

std::optional<QString> lastLineOf(QByteArray bytes)
{
    QBuffer file(&bytes);
    require(file.open(QIODevice::ReadOnly | QIODevice::Text), "a buffer can be read");
    return ProgressFile::lastLine(file);
}

void checkLine(const std::optional<QString> &line)
{
    if (!line)
        return;
    require(!line->contains(u'\n') && line->trimmed() == *line, "a line is one line");
    require(line->size() <= kLong, "only the end of a file is read");
}

void checkFile(const QByteArray &bytes, const std::optional<QString> &line)
{
    using Outcome = ProgressFile::Reading::Outcome;
    static const QString path = fuzz::fileNamed("progress.txt");
    fuzz::write(path, bytes);
    const ProgressFile::Reading reading = ProgressFile::read(path);
    require(reading.outcome == (line ? Outcome::Line : Outcome::Empty), "a file with bytes holds a line");
    require(line.value_or(QString()) == reading.line, "a file and a buffer of the same bytes read the same");
    const QString leftover = ProgressFile::fingerprint(path);
    require(ProgressFile::read(path, leftover).outcome == Outcome::None, "an old report is none");
    require(ProgressFile::read(path, leftover + u'0').outcome == reading.outcome, "another one is read");
    require(ProgressFile::clear(path).isEmpty(), "a file that nobody holds can be removed");
    require(ProgressFile::read(path, leftover).outcome == Outcome::None, "and is gone then");
    require(ProgressFile::clear(path).isEmpty(), "what is not there leaves nothing over");
}

void checkScale(int percent)
{
    using namespace ProgressScale;
    const int half = shown(percent, Part::PcHalf);
    require(shown(percent, Part::WholeRun) == percent, "one chip has the whole bar");
    require(shown(percent, Part::OtgHalf) - half == kPcHalfDone,
            "the second half begins where the first ends");
    if (percent >= 0 && percent <= kAllDone)
        require(half >= 0 && half <= kPcHalfDone, "a half of the bar is not left");
}

/// Takes what the polls of a run find.
class Run {
public:
    void take(const QString &line)
    {
        const ProgressFile::Report report = ProgressFile::judge(line);
        m_now = m_now.addMSecs(100 * line.size());
        using Kind = ProgressFile::Report::Kind;
        const bool succeeded = report.kind == Kind::Result && report.value == ProgressFile::kSuccess;
        require(ProgressFile::hasDoneItsWork(line) == (succeeded || line == u"100%"),
                "who has written everything has done its work");
        if (report.kind == Kind::Percentage)
            takePercentage(line, report.value);
        else if (report.kind == Kind::Result)
            require(line.startsWith(QStringLiteral("success")), "a result says so");
        else
            require(report.value == 0, "nothing to act on has no value");
    }

private:
    void takePercentage(const QString &line, int percent)
    {
        require(line.endsWith(u'%') && line.chopped(1).toInt() == percent, "a percentage is the line's");
        const ProgressFile::Report again = ProgressFile::judge(QString::number(percent) + u'%');
        require(again.kind == ProgressFile::Report::Kind::Percentage && again.value == percent,
                "a percentage can be written");
        checkScale(percent);
        checkVerdict(percent);
    }

    void checkVerdict(int percent)
    {
        using StallRule::Verdict;
        const bool first = m_last.percent == StallRule::kNothingYet;
        const Verdict verdict = StallRule::judge(m_last, percent, m_now);
        require(StallRule::judge({percent, QDateTime()}, percent, m_now) != Verdict::Stalled,
                "what nobody knows the age of does not stall");
        require(verdict != Verdict::Stalled || (!first && percent == m_last.percent),
                "only what stands stalls");
        if (verdict != Verdict::News)
            return;
        require(percent != m_last.percent && (percent >= 1 || !first), "what is known is no news");
        m_last = {percent, m_now};
        if (percent == StallRule::kNothingYet)
            return;
        require(StallRule::judge(m_last, percent, m_now.addMSecs(2999)) == Verdict::Standing,
                "a tool has three seconds");
        require(StallRule::judge(m_last, percent, m_now.addMSecs(3000)) == Verdict::Stalled,
                "and no more than three");
    }

    StallRule::Memory m_last;
    QDateTime m_now = QDateTime::fromMSecsSinceEpoch(0, QTimeZone::utc());
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const quint8 manner = input.takeByte();
    const QByteArray rest = input.takeRest();
    const QByteArray bytes = fileOf(quint8(manner & ~kInAFile), rest);
    const auto line = lastLineOf(bytes);
    checkLine(line);
    if (manner & kInAFile)
        checkFile(bytes, line);
    Run run;
    for (const QByteArray &line : rest.split('\n'))
        run.take(QString::fromUtf8(line).trimmed());
    return 0;
}
