// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVersionNumber>

#include <optional>

namespace publish {

/// A firmware that lies in a site: a folder that is never changed once it has its name.
struct Published {
    QString folder; ///< its name: a number that only grows, and the version: "00002-1.2.0"
    QVersionNumber version;
    QString before; ///< the folder that was served until then; empty for the first one
    QDateTime at;
    qint64 size = 0; ///< of the image
    QByteArray sha256; ///< of the image, hexadecimal
};

/// The folder that a web server answers panels from, as it stands on the disk:
///
///     SITE/served/R2MCU              a link to the folder that is served now
///     SITE/published/R2MCU/00002-1.2.0/firmware.bin, version.json, about.json
///
/// Whoever changes which folder is served renames a link, so image and version change in the same moment.
class Site {
public:
    explicit Site(const QString &folder)
        : m_folder(folder)
    {
    }

    QString folder() const { return m_folder; }
    QString linkOf(const QString &project) const; ///< below served
    QString historyOf(const QString &project) const; ///< the folder with all that was published

    std::optional<Published> served(const QString &project) const;
    bool isTaken(const QString &project) const; ///< whether anything at all is to be served
    /// Nothing when there is no such folder, or it cannot be understood.
    std::optional<Published> published(const QString &project, const QString &folder) const;
    QStringList foldersOf(const QString &project) const; ///< all that was published, oldest first

    /// Whether the image is the one that was published, and the answer names its version.
    bool isWhole(const QString &project, const Published &published) const;

private:
    QString m_folder;
};

/// The names within a published folder.
extern const QString kImageFile;
extern const QString kAnswerFile;
extern const QString kAboutFile;

QByteArray describe(const Published &published); ///< for kAboutFile
std::optional<QByteArray> sha256Of(const QString &file); ///< hexadecimal; nothing when it cannot be read

} // namespace publish
