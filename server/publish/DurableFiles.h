// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>

/// Changes to files that a power cut or a kill at any moment leaves undone or done, and nothing between. Each
/// function returns once the change is on the disk; on failure it returns false and puts one line into
/// \a error.
namespace DurableFiles {

/// A folder and all that are missing above it; one that is there already is fine.
bool makeFolder(const QString &path, QString *error);

/// A file of this content: written under another name in the same folder, then renamed.
bool write(const QString &path, const QByteArray &content, QString *error);

/// The same with the content of \a source, of whatever size.
bool copy(const QString &source, const QString &path, QString *error);

/// Gives a file or folder another name within its folder.
bool rename(const QString &from, const QString &to, QString *error);

/// Makes \a link lead to \a target, seen from the link's folder. Whoever opens it meanwhile follows the
/// former link or the new one.
bool pointLink(const QString &link, const QString &target, QString *error);

} // namespace DurableFiles
