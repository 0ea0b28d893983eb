#include "net/networking_class.h"

#include "system/Log.h"
#include "system/SharedFile.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <atomic>
#include <chrono>

using namespace std::chrono_literals;

namespace {
/// The only time limit of a version query.
constexpr auto kQueryLimit = 2000ms;
/// Bounds what a fast server can make the process hold while the disk is slow.
constexpr qint64 kDownloadBuffer = qint64(1024) * 1024;
/// How often, and how many times, a file that another program holds is tried: for 3 s in all, longer than a
/// virus scanner looks at one.
constexpr auto kHeldFilePause = 100ms;
constexpr int kHeldFileTries = 30;
/// Far more than release notes need. A server that sends on and on stalls here until the time limit.
constexpr qint64 kLargestAnswer = qint64(4) * 1024 * 1024;

void logFailedQuery(const QNetworkReply &reply)
{
    Log::net() << "request protobufHttp handle errors here";
    Log::net() << "request protobufHttp found error ....code: %d %d\n"
               << reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() << int(reply.error())
               << reply.errorString();
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
    QTimer::singleShot(kQueryLimit, query, [query] {
        if (query->isRunning())
            query->abort();
    });
    QEventLoop loop;
    connect(query, SIGNAL(finished()), &loop, SLOT(quit()));
    loop.exec();

    query->deleteLater();
    if (query->error() != QNetworkReply::NoError)
        logFailedQuery(*query);
    QJsonParseError parseError;
    const QJsonArray versions = QJsonDocument::fromJson(query->readAll(), &parseError).array();
    if (parseError.error != QJsonParseError::NoError || versions.isEmpty())
        return failedQuery();
    const QJsonObject newest = versions.first().toObject();
    f_remark = newest.value(u"f_remark").toString();
    f_remark_en = newest.value(u"f_remark_en").toString();
    return newest.value(u"f_ver").toString();
}

void networking_class::downloadFile(QUrl url, QString fileName)
{
    this->fileName = fileName;
    Log::net() << "ggxxxxxxxxx" << fileName;
    heldFileTimer->disconnect(this);
    heldFileTimer->stop();
    if (reply) {
        // Two downloads at a time would close each other's file and pass half an image on as a whole one.
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
        reply = nullptr;
    }
    openFileAndRequest(url, kHeldFileTries);
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
    reply->setReadBufferSize(kDownloadBuffer);
    connect(reply, &QNetworkReply::readyRead, this, &networking_class::httpReadyRead);
    connect(reply, &QNetworkReply::downloadProgress, this, &networking_class::updateDataReadProgress);
    connect(reply, &QNetworkReply::finished, this, &networking_class::httpFinished);
}

void networking_class::httpReadyRead()
{
    if (file)
        file->write(reply->readAll());
}

void networking_class::httpFinished()
{
    // With a bounded read buffer the last bytes may not have been announced by a readyRead of their own.
    httpReadyRead();
    file.reset();
    reply->deleteLater();
    reply = nullptr;
    Q_EMIT network_finish_download();
}

void networking_class::updateDataReadProgress(qlonglong bytesRead, qlonglong totalBytes)
{
    Log::net() << "22222xxxxxxxxx" << bytesRead << totalBytes;
}
