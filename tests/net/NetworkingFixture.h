// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "net/networking_class.h"
#include "tests/net/ClientInside.h"
#include "tests/support/Files.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedHttpServer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>

/// The process's client, an update server that does as it is told, and a folder for images.
struct NetworkingFixture {
    ScriptedHttpServer server;
    LogCapture log;
    QTemporaryDir folder;
    networking_class *client = networking_class::getInstance();
    QSignalSpy ended{client, &networking_class::network_finish_download};

    static QString address(const QString &path)
    {
        return QStringLiteral("http://update.quillon.example") + path;
    }
    QString query(const QString &path = kVersionPath) const { return client->getVersion(address(path)); }
    QString image(const QString &name = QStringLiteral("image.bin")) const { return folder.filePath(name); }
    void download(const QString &file, const QString &path = kImagePath) const
    {
        client->downloadFile(QUrl(address(path)), file);
    }

    /// The server sends so many bytes of \a body and the rest once it is told to.
    void answerHeld(const QString &path, const QByteArray &body, qint64 holdAfter)
    {
        auto held = ScriptedHttpServer::page(body);
        held.holdAfter = holdAfter;
        server.answer(path, held);
    }

    /// What a query that brings no notes has to leave as it is.
    void rememberOldNotes() const
    {
        client->f_remark = QStringLiteral("旧说明");
        client->f_remark_en = QStringLiteral("old notes");
    }

    /// Replies that the client still keeps.
    qsizetype repliesKept() const { return ClientInside::manager()->findChildren<QNetworkReply *>().size(); }

    static inline const QString kVersionPath = QStringLiteral("/upinfo_test.aspx?proj_name=R2MCU");
    static inline const QString kImagePath = QStringLiteral("/dnfile_test.aspx?f_sn=155");
};
