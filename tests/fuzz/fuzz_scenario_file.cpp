// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile scenarios: reading one must end in statements or in a message that names the line, and a statement
// must survive being written and read again. An input without a byte is a file that is not there, and
// one that begins with an empty line is read from a file.
#include "rig/Scenario.h"
#include "rig/ScenarioGrammar.h"
#include "rig/ScenarioWords.h"
#include "tests/fuzz/Files.h"

#include <QRegularExpression>

using namespace rig;
using fuzz::require;

namespace {

// A name that is a pattern to those who put messages together.
constexpr char kName[] = "input%1%2%3.scn";

void checkMessage(const QString &error, const QString &path, qsizetype lines)
{
    require(error.startsWith(path + u':') && error.size() > path.size() + 2,
            "a mistake is told with its file");
    require(fuzz::isPrintable(error) && error.isValidUtf16(), "a message can be printed");
    static const QRegularExpression form(QStringLiteral("^:(\\d+): ."));
    const QRegularExpressionMatch place = form.match(error.mid(path.size()));
    const int line = place.captured(1).toInt();
    require(place.hasMatch() ? line >= 1 && line <= lines : lines < 2 || error.endsWith(u"no statement"),
            "a mistake is told with its line");
}

QString quoted(QString word)
{
    word.replace(u'\\', QStringLiteral("\\\\"))
        .replace(u'"', QStringLiteral("\\\""))
        .replace(u'\n', QStringLiteral("\\n"));
    return u'"' + word + u'"';
}

/// \a statement as somebody might have written it.
QString lineOf(const Statement &statement)
{
    QStringList words;
    if (statement.attempt)
        words.append(QStringLiteral("try"));
    qsizetype filler = 0;
    for (const FormPart &part : partsOf(grammar().at(statement.form))) {
        if (!part.gap) {
            words.append(part.word);
            continue;
        }
        const QString &word = statement.words.at(filler++);
        if (part.repeated)
            words.append(word);
        else if (!part.optional || !word.isEmpty())
            words.append(quoted(word));
    }
    require(filler == statement.words.size(), "each gap is filled once");
    return words.join(u' ');
}

void checkStatement(const Statement &statement, qsizetype lines)
{
    require(statement.line >= 1 && statement.line <= lines, "a statement has its line");
    require(!wordKind(statement.text), "a line is no kind of word");
    require(statement.form >= 0 && statement.form < grammar().size(), "a statement has a form");
    QString error;
    const auto again = Scenario::parse(lineOf(statement), QString(), &error);
    require(again && again->statements.size() == 1, "a statement that is written can be read");
    const Statement &same = again->statements.first();
    require(same.form == statement.form && same.words == statement.words && same.attempt == statement.attempt,
            "and says the same");
}

std::optional<Scenario> read(const QByteArray &bytes, const QString &path, QString *error)
{
    if (bytes.startsWith('\n'))
        fuzz::write(path, bytes);
    else if (!bytes.isEmpty())
        return Scenario::parse(QString::fromUtf8(bytes), path, error);
    const auto scenario = Scenario::load(path, error);
    QFile::remove(path);
    return scenario;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QString path = fuzz::fileNamed(kName);
    const QByteArray bytes = fuzz::bytesOf(data, size);
    const qsizetype lines = bytes.count('\n') + 1;
    QString error;
    const auto scenario = read(bytes, path, &error);
    if (!scenario) {
        checkMessage(error, path, lines);
        return 0;
    }
    int line = 0;
    for (const Statement &statement : scenario->statements) {
        require(statement.line > line, "statements stand in their order");
        line = statement.line;
        checkStatement(statement, lines);
    }
    return 0;
}
