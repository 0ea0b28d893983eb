// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/support/Files.h"
#include "tests/support/ProgramRun.h"

#include <QByteArray>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStorageInfo>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A site in a fresh folder, filled by the real quillon-publish and read as a web server reads it.
class SiteFolder {
public:
    QString path() const { return m_folder.filePath(QStringLiteral("site")); }

    /// A file beside the site.
    QString file(const QString &name, const QByteArray &content) const
    {
        writeFile(m_folder.filePath(name), content);
        return m_folder.filePath(name);
    }

    static QByteArray imageOf(const QString &version) { return "image " + version.toLatin1(); }

    /// What publishes this version of the R2's PC firmware; \a more options behind.
    QStringList adding(const QString &version, const QStringList &more = {}) const
    {
        return QStringList{path(),
                           QStringLiteral("add"),
                           QStringLiteral("--model=R2"),
                           QStringLiteral("--chip=pc"),
                           QStringLiteral("--version=") + version,
                           QStringLiteral("--notes-en=") + file(QStringLiteral("en.txt"), "Better.\n"),
                           QStringLiteral("--notes-zh=") + file(QStringLiteral("zh.txt"), "更好。\n"),
                           file(QStringLiteral("image ") + version, imageOf(version))}
        + more;
    }

    QStringList rollingBack() const
    {
        return {path(), QStringLiteral("rollback"), QStringLiteral("--model=R2"),
                QStringLiteral("--chip=pc")};
    }

    static ProgramRun run(const QStringList &arguments)
    {
        return ProgramRun::with(QStringLiteral(QUILLON_PUBLISH), arguments);
    }

    QString served(const QString &name, const QString &project = QStringLiteral("R2MCU")) const
    {
        return path() + QStringLiteral("/served/") + project + u'/' + name;
    }

    /// The first element of the answer to the version query; empty when there is none.
    QJsonObject answer() const
    {
        const QByteArray text = contentOf(served(QStringLiteral("version.json")));
        return QJsonDocument::fromJson(text).array().at(0).toObject();
    }

    QString servedVersion() const { return answer().value(QStringLiteral("f_ver")).toString(); }
    QByteArray servedImage() const { return contentOf(served(QStringLiteral("firmware.bin"))); }

private:
    /// Where quillon-publish's care for the disk costs others nothing: tests that run beside this one keep
    /// time.
    static QString templateInMemory()
    {
        constexpr qint64 kWanted = qint64(400) * 1024 * 1024;
        const QStorageInfo memory(QStringLiteral("/dev/shm"));
        const bool serves = memory.isValid() && !memory.isReadOnly() && memory.bytesAvailable() > kWanted;
        return (serves ? memory.rootPath() : QDir::tempPath()) + QStringLiteral("/quillon-site-XXXXXX");
    }

    QTemporaryDir m_folder{templateInMemory()};
};
