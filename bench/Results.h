// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>

/// What was measured, in the unit of its row.
struct Samples {
    QList<double> values;

    bool isEmpty() const { return values.isEmpty(); }
    double median() const { return percentile(50); }
    /// Nearest rank; 0 without a sample.
    double percentile(int percent) const;
};

/// One line of the table: what the product costs, and what the same costs elsewhere on the same machine in
/// the same minute.
struct Row {
    QString what;
    QString unit;
    QString limit; ///< what is wanted; empty where nothing is
    Samples ours;
    QString peer; ///< who else does it; empty without one
    Samples peers;
};

/// What the command line of a measuring program says, and where its rows go.
///     PROGRAM [--short] [--rows FILE]
/// Each row is printed, and, with --rows, added to FILE as a line of JSON, which bench_table reads.
class Results {
public:
    explicit Results(const QStringList &arguments);

    /// Whether this run only shows that the program works: a second or so in all.
    bool isShort() const { return m_isShort; }
    /// \a full, or \a brief in a short run.
    int count(int full, int brief) const { return m_isShort ? brief : full; }
    void add(const Row &row) const;

private:
    bool m_isShort = false;
    QString m_file;
};

/// Says \a what went wrong and ends the program.
[[noreturn]] void giveUp(const char *what);
