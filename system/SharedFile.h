// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

class QFile;
class QString;

/// Files that other programs have open at the same time. Only on Windows can they keep this one out.
namespace SharedFile {

/// Opens \a file for reading text. Whoever else has it open may go on to write it, and may delete it. As
/// QFile::open() otherwise. What is read goes straight into the caller's buffer: the files are small.
bool openForReading(QFile &file);

/// Whether another program has the file at \a path open in a way that keeps this one from reading or from
/// writing it. Virus scanners do so for a moment. False for a file that does not exist.
bool isHeld(const QString &path);

} // namespace SharedFile
