// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace rig {

/// One line of a scenario, checked against the grammar.
struct Statement {
    int line = 0; ///< counted from 1
    int form = 0; ///< index into grammar()
    QStringList words; ///< the words that fill the form's gaps, in order; an omitted optional one is empty
    QString text; ///< the line as it stands, trimmed
    bool attempt = false; ///< begins with "try": what cannot be done is passed over
};

/// A scenario as read from a file: what to do with the device, the server and the panel, and what to expect.
struct Scenario {
    QString file;
    QList<Statement> statements;

    /// Reads \a file. Nothing when it cannot be read or holds a line that is no statement; \a error then says
    /// "FILE:LINE: what is wrong" (or "FILE: what is wrong" when the file cannot be read).
    static std::optional<Scenario> load(const QString &file, QString *error);
    /// The same for a text; \a file only stands in the messages.
    static std::optional<Scenario> parse(const QString &text, const QString &file, QString *error);
};

} // namespace rig
