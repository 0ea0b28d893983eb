// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "net/networking_class.h"

#include "net/VersionAnswer.h"
#include "system/Log.h"
#include "system/SharedFile.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QMetaMethod>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <optional>

using namespace std::chrono_literals;

namespace {
/// The only time limit of a version query.
constexpr auto kQueryLimit = 2000ms;
/// Bounds what a fast server can make the process hold while the disk is slow, and what is written at a time:
/// a compressed image may hold a hundred times what has arrived of it.
constexpr qint64 kDownloadPiece = qint64(1024) * 1024;
/// How often, and how many times, a file that another program holds is tried: for 3 s in all, longer than a
/// virus scanner looks at one.
constexpr auto kHeldFilePause = 100ms;
constexpr int kHeldFileTries = 30;
/// Far more than release notes need. A server that sends on and on stalls here until the time limit, and what
/// a compressed answer holds beyond it is not unpacked.
constexpr qint64 kLargestAnswer = qint64(4) * 1024 * 1024;
/// What is read at once. A larger answer can be made to take a fifth of a second.
constexpr qsizetype kReadAtOnce = qsizetype(64) * 1024;

/// Reads \a body without keeping the calling thread from its events.
std::optional<VersionAnswer> readBeside(const QByteArray &body)
{
    std::optional<VersionAnswer> answer;
    const std::unique_ptr<QThread> reader(
        QThread::create([&answer, &body] { answer = VersionAnswer::read(body); }));
    QEventLoop loop;
    QObject::connect(reader.get(), &QThread::finished, &loop, &QEventLoop::quit);
    reader->start();
    if (reader->isRunning())
        loop.exec();
    reader->wait(); // an application that quits leaves the loop at once
    return answer;
}

/// The server chooses a part of it.
QString withoutExcess(QString errorText)
{
    errorText.truncate(200);
    errorText.removeIf([](QChar character) { return !character.isPrint(); });
    return errorText;
}

void logFailedQuery(const QNetworkReply &reply)
{
    Log::net() << "request protobufHttp handle errors here";
    Log::net() << "request protobufHttp found error ....code: %d %d\n"
               << reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() << int(reply.error())
               << withoutExcess(reply.errorString());
}
} // namespace

networking_class::networking_class()
    : manager(new QNetworkAccessManager)
    , heldFileTimer(new QTimer(this))
{
    heldFileTimer->setSingleShot(true);
    // Whichever thread asked first, it may be gone when the GUI thread waits for an answer.
    if (const QCoreApplication *application = QCoreApplication::instance()) {
        manager->moveToThread(application->thread());
        moveToThread(application->thread());
    }
}

networking_class::~networking_class() = default;

networking_class *networking_class::getInstance()
{
    static std::atomic<networking_class *> instance{nullptr};
    static QMutex mutex;
    if (!instance.load(std::memory_order_acquire)) {
        const QMutexLocker lock(&mutex);
        if (!instance.load(std::memory_order_relaxed))
            instance.store(new networking_class, std::memory_order_release);
    }
    return instance.load(std::memory_order_acquire);
}

const QString &networking_class::failedQuery()
{
    static const QString answer = QStringLiteral("104");
    return answer;
}

QString networking_class::getVersion(QString url)
{
    QNetworkReply *query = manager->get(QNetworkRequest(QUrl(url)));
    query->setReadBufferSize(kLargestAnswer);
    // A coarse timer would give a slow server up to a twentieth less.
    QTimer::singleShot(kQueryLimit, Qt::PreciseTimer, query, [query] {
        if (query->isRunning())
            query->abort();
    });
    QEventLoop loop;
    connect(query, SIGNAL(finished()), &loop, SLOT(quit()));
    // Whoever asks may be one of several events that are being delivered. With glib's event loop the others
    // would wait until a new one comes.
    loop.wakeUp();
    loop.exec();

    query->deleteLater();
    if (query->error() != QNetworkReply::NoError)
        logFailedQuery(*query);
    if (!query->isOpen()) // given up
        return failedQuery();
    const QByteArray body = query->read(kLargestAnswer + 1);
    if (body.size() > kLargestAnswer)
        return failedQuery();
    const auto answer = body.size() > kReadAtOnce ? readBeside(body) : VersionAnswer::read(body);
    if (!answer)
        return failedQuery();
    f_remark = answer->notes;
    f_remark_en = answer->notesInEnglish;
    return answer->version;
}

void networking_class::downloadFile(QUrl url, QString fileName)
{
    giveUpDownload(fileName);
    this->fileName = fileName;
    Log::net() << "ggxxxxxxxxx" << fileName;
    openFileAndRequest(url, kHeldFileTries);
}

/// Two downloads at a time would close each other's file and pass half an image on as a whole one.
void networking_class::giveUpDownload(const QString &nextFile)
{
    heldFileTimer->disconnect(this);
    heldFileTimer->stop();
    if (!reply)
        return;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
    reply = nullptr;
    file.reset();
    // The same file is emptied; on Windows one that is removed may be in the way for a while.
    if (fileName != nextFile)
        QFile::remove(fileName);
}

void networking_class::giveUpUnheardDownload()
{
    static const QMetaMethod end = QMetaMethod::fromSignal(&networking_class::network_finish_download);
    if (!isSignalConnected(end))
        giveUpDownload(QString());
}

void networking_class::waitForFile(const QUrl &url, int triesLeft)
{
    file.reset();
    if (triesLeft == 0)
        return;
    heldFileTimer->callOnTimeout(
        this, [this, url, triesLeft] { openFileAndRequest(url, triesLeft - 1); }, Qt::SingleShotConnection);
    heldFileTimer->start(kHeldFilePause);
}

void networking_class::openFileAndRequest(const QUrl &url, int triesLeft)
{
    file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::WriteOnly)) {
        if (SharedFile::isHeld(fileName))
            return waitForFile(url, triesLeft);
        // Let go of between the two questions, or not to be written at all.
        if (!file->open(QIODevice::WriteOnly))
            return file.reset();
    }
    reply = manager->get(QNetworkRequest(url));
    reply->setReadBufferSize(kDownloadPiece);
    connect(reply, &QNetworkReply::readyRead, this, &networking_class::httpReadyRead);
    connect(reply, &QNetworkReply::downloadProgress, this, &networking_class::updateDataReadProgress);
    connect(reply, &QNetworkReply::finished, this, &networking_class::httpFinished);
}

void networking_class::httpReadyRead()
{
    if (writePiece())
        continueWith(&networking_class::httpReadyRead);
}

/// Everything else has its turn between two pieces, a next download included.
void networking_class::continueWith(void (networking_class::*step)())
{
    QTimer::singleShot(0, reply, [this, step, current = reply] {
        if (reply == current)
            (this->*step)();
    });
}

/// Whether there may be more to write. Until all has been taken Qt reads no more from the server, and
/// announces nothing either.
bool networking_class::writePiece()
{
    const QByteArray piece = reply->read(kDownloadPiece);
    if (file)
        file->write(piece);
    return piece.size() == kDownloadPiece;
}

void networking_class::httpFinished()
{
    // The last bytes may not have been announced by a readyRead of their own.
    if (writePiece())
        return continueWith(&networking_class::httpFinished);
    file.reset();
    reply->deleteLater();
    reply = nullptr;
    Q_EMIT network_finish_download();
}

void networking_class::updateDataReadProgress(qlonglong bytesRead, qlonglong totalBytes)
{
    Log::net() << "22222xxxxxxxxx" << bytesRead << totalBytes;
}
