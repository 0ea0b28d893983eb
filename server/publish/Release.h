// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QString>
#include <QVersionNumber>

#include <optional>

namespace publish {

/// What is told about a firmware.
struct Release {
    QVersionNumber version;
    QString notesInChinese;
    QString notesInEnglish;
};

/// "1.2.0": three numbers, each 0 to 65535, for each fills two bytes in the device. Nothing for any other
/// text.
std::optional<QVersionNumber> versionFrom(const QString &text);

/// Release notes as they stand in a file, without the line ends behind them; nothing when \a bytes are not
/// UTF-8.
std::optional<QString> notesFrom(const QByteArray &bytes);

/// What the panel is answered when it asks for the newest version: a list of one element, in JSON.
QByteArray answerFor(const Release &release);
std::optional<QVersionNumber> versionIn(const QByteArray &answer); ///< that it names

} // namespace publish
