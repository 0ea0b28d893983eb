// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/server/SiteFolder.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

/// What a server said.
struct WebAnswer {
    int status = 0;
    QByteArray body;
    QMap<QByteArray, QByteArray> head; ///< names in small letters
};

/// nginx in front of a site, as server/serve runs it, while the object lives.
class NginxSite : public SiteFolder {
public:
    static bool isInstalled()
    {
        return !QStandardPaths::findExecutable(QStringLiteral("nginx"), {QStringLiteral("/usr/sbin")})
                    .isEmpty()
            || !QStandardPaths::findExecutable(QStringLiteral("nginx")).isEmpty();
    }

    NginxSite()
    {
        // Its workers may be another user.
        for (const QString &folder : QStringList{QFileInfo(path()).path(), m_folder.path()})
            QFile::setPermissions(folder, QFile::permissions(folder) | QFile::ExeOther | QFile::ReadOther);
        m_server.setProcessChannelMode(QProcess::ForwardedChannels);
        m_server.start(QStringLiteral(QUILLON_SERVE), {path(), m_folder.path()});
    }

    ~NginxSite()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    bool isUp() const
    {
        return QTest::qWaitFor([this] { return !address().isEmpty(); }, 10000);
    }

    /// "127.0.0.1:PORT"; empty until it listens.
    QString address() const
    {
        QFile file(m_folder.filePath(QStringLiteral("address")));
        return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()).trimmed() : QString();
    }

    WebAnswer ask(const QString &path, const QByteArray &method = "GET",
                  const QByteArray &knownTag = {}) const
    {
        QNetworkAccessManager manager;
        QNetworkRequest request(QUrl(QStringLiteral("http://") + address() + path));
        if (!knownTag.isEmpty())
            request.setRawHeader("If-None-Match", knownTag);
        QNetworkReply *reply
            = method == "HEAD" ? manager.head(request) : manager.sendCustomRequest(request, method);
        if (!QSignalSpy(reply, &QNetworkReply::finished).wait(10000))
            return {};
        WebAnswer answer{
            reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(), {}};
        for (const auto &[name, value] : reply->rawHeaderPairs())
            answer.head.insert(name.toLower(), value);
        return answer;
    }

private:
    QTemporaryDir m_folder;
    QProcess m_server;
};
