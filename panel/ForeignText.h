// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

/// What may be shown, or named on disk, of a text that comes from outside. Whoever sits on the wire chooses
/// such a text: laying out one endless word takes minutes, and invisible characters can turn around or cover
/// what stands beside them.
namespace QuillonFirmwareUpgrade::ForeignText {

/// Longer than any release notes; laying out so much takes a twentieth of a second at most,
/// whatever it is made of.
constexpr qsizetype kLongestNotes = 2000;
/// Longer than any version, and short enough for the line it stands on.
constexpr qsizetype kLongestVersion = 24;

/// \a notes as they are shown: at most kLongestNotes characters, cut at the end of a line or of a word, where
/// there is one near, with "…" at the end. Line breaks, tabs and the letters of all scripts stay. Control
/// characters, what overrides the direction of writing, and marks heaped upon one letter are left out. A word
/// that is wider than the box gets invisible places to break it at, which do not count.
QString shownNotes(const QString &notes);

/// \a version as it is shown: one line, at most kLongestVersion characters with a "…" at the end of what was
/// cut, and without what shownNotes() leaves out.
QString shownVersion(const QString &version);

/// \a version as a part of a file's name: what could lead to another folder, or is not allowed in a name,
/// becomes "_". A version of numbers, letters, dots, dashes and blanks stays as it is.
QString inFileName(const QString &version);

} // namespace QuillonFirmwareUpgrade::ForeignText
