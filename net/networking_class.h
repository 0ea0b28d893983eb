// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

class QFile;
class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

/// The update server's client: blocking version queries, and the download of one image at a time.
///
/// One instance serves the whole process and is never destroyed. GUI thread only, but for getInstance().
class networking_class : public QObject {
    Q_OBJECT

public:
    /// The instance, created on first use; any thread. Never null.
    static networking_class *getInstance();

    /// What getVersion() returns when no version could be read.
    static const QString &failedQuery();

    /// Asks for the newest version of one project and keeps the release notes that come with it. Blocks in a
    /// nested event loop for at most about 2 s; slots, timers and input of the application run meanwhile.
    /// Returns failedQuery() for anything but a JSON list with an element, for a text that cannot be a
    /// version (VersionAnswer) and for an answer of more than 4 MiB; the notes then stay as they were. An
    /// element that names no version gives an empty string and empties the notes.
    QString getVersion(QString url);

    /// Starts to download \a url into the file \a fileName, which is emptied first, and returns at once. A
    /// download that still runs is given up for the new one, and what it had written is removed. When the
    /// file cannot be opened nothing is sent and nothing is ever emitted; one that another program holds, as
    /// virus scanners do, is tried again for some seconds. Whether what arrived is an image is for the caller
    /// to judge: an error page is stored like one.
    void downloadFile(QUrl url, QString fileName);

    /// Gives up a download whose end nobody listens for any more, and removes what it had written. A server
    /// that never ends would keep the file open for as long as the process lives.
    void giveUpUnheardDownload();

Q_SIGNALS:
    /// The download has ended, well or not, and its file is closed.
    void network_finish_download();

private Q_SLOTS:
    void httpFinished();
    void httpReadyRead();
    void updateDataReadProgress(qlonglong bytesRead, qlonglong totalBytes);

private:
    networking_class();
    ~networking_class() override;
    void giveUpDownload(const QString &nextFile);
    bool writePiece();
    void continueWith(void (networking_class::*step)());
    void openFileAndRequest(const QUrl &url, int triesLeft);
    void waitForFile(const QUrl &url, int triesLeft);

    QNetworkAccessManager *manager;
    QNetworkReply *reply = nullptr;
    std::unique_ptr<QFile> file; // null while no download is open
    QString fileName;

public:
    QString f_remark; ///< release notes in Chinese, of the last query that succeeded
    QString f_remark_en; ///< release notes in English, of the last query that succeeded

private:
    QTimer *heldFileTimer; // runs while another program holds the file
};
