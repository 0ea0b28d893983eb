// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

namespace options {

/// A command line that was read: something to run, or a text to print and a status to end with.
template <typename Options> struct CommandLine {
    enum class Verdict { Run, Help, Wrong };

    Verdict verdict = Verdict::Run;
    Options options; ///< only for Run
    QString message; ///< what is wrong, in one line, or the help text
};

/// A command line that keeps the first thing that is wrong with it. "--help" is among its options.
class Words : public QCommandLineParser {
public:
    Words(const QString &description, const QList<QCommandLineOption> &table, const QStringList &arguments);

    /// The value of an option that names \a what, "a file" for example.
    QString nameIn(const QString &option, const QString &what);

    void complain(const QString &text);
    QString complaint() const { return m_complaint; }

    bool asksForHelp() const;
    /// \a form: what stands behind the program's name.
    QString helpTextFor(const QString &program, const QString &form) const;

private:
    QString m_complaint;
};

/// What \a words come to: \a read makes the options of them, \a help the text.
template <typename Options, typename Read, typename Help>
CommandLine<Options> judge(Words &words, const Read &read, const Help &help)
{
    using Verdict = typename CommandLine<Options>::Verdict;
    if (words.asksForHelp())
        return {Verdict::Help, {}, help(words)};
    const Options options = words.complaint().isEmpty() ? read(words) : Options();
    if (!words.complaint().isEmpty())
        return {Verdict::Wrong, {}, words.complaint()};
    return {Verdict::Run, options, {}};
}

} // namespace options
