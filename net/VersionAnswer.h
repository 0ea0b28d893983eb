// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What the update server answers to a version query: a JSON list whose first element describes the newest
/// firmware of a project. The other elements, and names that are not listed here, do not matter.
struct VersionAnswer {
    QString version; ///< "f_ver"
    QString notes; ///< "f_remark", release notes in Chinese
    QString notesInEnglish; ///< "f_remark_en"

    /// Longer than any version, and short enough for a part of a file's name in every script.
    static constexpr qsizetype kLongestVersion = 40;

    /// Reads \a body; none for anything but a list with an element, and for a version that is longer than
    /// that or holds what cannot be printed, such as a line feed or a mark that turns the text around. What
    /// the element does not hold as a text is empty. Any thread: a few megabytes made to be slow take a
    /// fraction of a second.
    static std::optional<VersionAnswer> read(const QByteArray &body);
};
