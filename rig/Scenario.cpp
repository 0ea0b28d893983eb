// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Scenario.h"

#include "rig/ScenarioGrammar.h"
#include "rig/ScenarioWords.h"

#include <QFile>

namespace rig {

namespace {

// The parts of every form, in the order of the grammar: each line is held against all of them.
const QList<QList<FormPart>> &formParts()
{
    static const QList<QList<FormPart>> all = [] {
        QList<QList<FormPart>> parts;
        parts.reserve(grammar().size());
        for (const StatementForm &form : grammar())
            parts.append(partsOf(form));
        return parts;
    }();
    return all;
}

// How far a line agreed with a form, and what would have let it go on.
struct Match {
    bool whole = false;
    qsizetype agreed = 0; // words of the line
    QStringList expected;
    QStringList fillers;
};

class Matcher {
public:
    explicit Matcher(const QStringList &words)
        : m_words(words)
    {
    }

    Match match(const QList<FormPart> &form)
    {
        m_match = {};
        bool fits = true;
        for (const FormPart &part : form) {
            fits = take(part);
            if (!fits)
                break;
        }
        m_match.whole = fits && m_match.agreed == m_words.size();
        if (fits && !m_match.whole)
            m_match.expected.append(QStringLiteral("the end of the line"));
        return m_match;
    }

private:
    bool take(const FormPart &part)
    {
        QStringList fillers;
        while (m_match.agreed < m_words.size() && accepts(part, m_words.at(m_match.agreed))) {
            fillers.append(m_words.at(m_match.agreed++));
            m_match.expected.clear();
            if (!part.repeated)
                break;
        }
        if (part.gap)
            m_match.fillers.append(fillers.join(QLatin1Char(' ')));
        if (fillers.isEmpty())
            m_match.expected.append(expectation(part));
        return part.optional || !fillers.isEmpty();
    }

    static bool accepts(const FormPart &part, const QString &word)
    {
        return part.gap ? wordKind(part.word)->accepts(word) : part.word == word;
    }

    static QString expectation(const FormPart &part)
    {
        return part.gap ? wordKind(part.word)->expectation()
                        : QLatin1Char('"') + part.word + QLatin1Char('"');
    }

    const QStringList &m_words;
    Match m_match;
};

// A word of the file as a message may show it: what it holds is not to steer the terminal.
QString shown(const QString &word)
{
    constexpr qsizetype kShownCharacters = 40;
    QString text = word.left(kShownCharacters);
    if (!text.isValidUtf16())
        text.chop(1); // the first half of a character
    for (QChar &character : text) {
        if (!character.isPrint() && !character.isSurrogate())
            character = u'?';
    }
    const QString rest = word.size() > kShownCharacters ? QStringLiteral("...") : QString();
    return QLatin1Char('"') + text + rest + QLatin1Char('"');
}

QString complaint(const QStringList &words, qsizetype agreed, QStringList expected)
{
    if (agreed == 0)
        return QStringLiteral("no such statement: ") + shown(words.first());
    expected.removeDuplicates();
    const QString found
        = agreed < words.size() ? shown(words.at(agreed)) : QStringLiteral("the end of the line");
    return QStringLiteral("expected %1, found %2").arg(expected.join(QStringLiteral(" or ")), found);
}

// Fills statement from words; returns what is wrong with them otherwise.
QString understand(QStringList words, Statement &statement)
{
    statement.attempt = words.first() == u"try";
    if (statement.attempt)
        words.removeFirst();
    if (words.isEmpty())
        return QStringLiteral("expected a statement, found the end of the line");
    qsizetype furthest = 0;
    QStringList expected;
    for (int form = 0; form < formParts().size(); ++form) {
        const Match match = Matcher(words).match(formParts().at(form));
        if (match.whole) {
            statement.form = form;
            statement.words = match.fillers;
            return {};
        }
        if (match.agreed > furthest)
            expected.clear();
        furthest = std::max(furthest, match.agreed);
        if (match.agreed == furthest)
            expected += match.expected;
    }
    return complaint(words, furthest, expected);
}

} // namespace

std::optional<Scenario> Scenario::load(const QString &file, QString *error)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(file, source.errorString());
        return {};
    }
    return parse(QString::fromUtf8(source.readAll()), file, error);
}

std::optional<Scenario> Scenario::parse(const QString &text, const QString &file, QString *error)
{
    Scenario scenario{file, {}};
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int number = 1; number <= lines.size(); ++number) {
        const QString line = lines.at(number - 1).trimmed();
        LineWords split = splitLine(line);
        if (split.words.isEmpty() && split.error.isEmpty())
            continue;
        Statement statement{number, 0, {}, line, false};
        if (split.error.isEmpty())
            split.error = understand(split.words, statement);
        if (!split.error.isEmpty()) {
            *error = QStringLiteral("%1:%2: %3").arg(file, QString::number(number), split.error);
            return {};
        }
        scenario.statements.append(statement);
    }
    if (!scenario.statements.isEmpty())
        return scenario;
    *error = QStringLiteral("%1: holds no statement").arg(file);
    return {};
}

} // namespace rig
