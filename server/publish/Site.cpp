// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/Site.h"

#include "server/publish/Release.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace publish {

const QString kImageFile = QStringLiteral("firmware.bin");
const QString kAnswerFile = QStringLiteral("version.json");
const QString kAboutFile = QStringLiteral("about.json");

namespace {

const QString kVersion = QStringLiteral("version");
const QString kBefore = QStringLiteral("before");
const QString kAt = QStringLiteral("published");
const QString kSize = QStringLiteral("size");
const QString kSha256 = QStringLiteral("sha256");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QString Site::linkOf(const QString &project) const
{
    return m_folder + QStringLiteral("/served/") + project;
}

QString Site::historyOf(const QString &project) const
{
    return m_folder + QStringLiteral("/published/") + project;
}

std::optional<Published> Site::served(const QString &project) const
{
    const QString target = QFile::symLinkTarget(linkOf(project));
    return target.isEmpty() ? std::nullopt : published(project, QFileInfo(target).fileName());
}

bool Site::isTaken(const QString &project) const
{
    const QFileInfo link(linkOf(project));
    return link.isSymLink() || link.exists();
}

std::optional<Published> Site::published(const QString &project, const QString &folder) const
{
    const QByteArray text = contentOf(historyOf(project) + u'/' + folder + u'/' + kAboutFile);
    const QJsonObject about = QJsonDocument::fromJson(text).object();
    const auto version = versionFrom(about.value(kVersion).toString());
    if (folder.isEmpty() || !version)
        return std::nullopt;
    return Published{folder,
                     *version,
                     about.value(kBefore).toString(),
                     QDateTime::fromString(about.value(kAt).toString(), Qt::ISODate),
                     about.value(kSize).toInteger(),
                     about.value(kSha256).toString().toLatin1()};
}

QStringList Site::foldersOf(const QString &project) const
{
    return QDir(historyOf(project)).entryList({QStringLiteral("[0-9]*-*")}, QDir::Dirs, QDir::Name);
}

bool Site::isWhole(const QString &project, const Published &published) const
{
    const QDir folder(historyOf(project) + u'/' + published.folder);
    return versionIn(contentOf(folder.filePath(kAnswerFile))) == published.version
        && sha256Of(folder.filePath(kImageFile)) == published.sha256;
}

QByteArray describe(const Published &published)
{
    const QJsonObject about{{kVersion, published.version.toString()},
                            {kBefore, published.before},
                            {kAt, published.at.toString(Qt::ISODate)},
                            {kSize, published.size},
                            {kSha256, QString::fromLatin1(published.sha256)}};
    return QJsonDocument(about).toJson();
}

std::optional<QByteArray> sha256Of(const QString &file)
{
    QFile from(file);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!from.open(QIODevice::ReadOnly) || !hash.addData(&from))
        return std::nullopt;
    return hash.result().toHex();
}

} // namespace publish
