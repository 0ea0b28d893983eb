#include "tests/net/NetworkingFixture.h"
#include "tests/support/TestProgram.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QThread>
#include <QtTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The download of an image into a file.
class DownloadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<NetworkingFixture>(); }
    void cleanup() { m.reset(); }
    void storesTheImageAndSaysSoOnce();
    void returnsBeforeAnythingArrives();
    void logsTheFileAndTheProgress();
    void emptiesTheFileFirst();
    void endsWithWhatArrived_data();
    void endsWithWhatArrived();
    void writesWhileItReceives();
    void asksNothingWhenTheFileCannotBeOpened_data();
    void asksNothingWhenTheFileCannotBeOpened();
    void survivesAFullDisk();
    void holdsLittleOfALargeImageInMemory();

private:
    std::unique_ptr<NetworkingFixture> m;
};

void DownloadTest::storesTheImageAndSaysSoOnce()
{
    QByteArray image(300'000, '\0');
    for (qsizetype i = 0; i < image.size(); ++i)
        image[i] = char(i * 7 + i / 251);
    m->server.answer(m->kImagePath, ScriptedHttpServer::page(image));
    m->download(m->image());
    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(m->contentOf(m->image()), image);
    QCOMPARE(m->server.paths(), QStringList(m->kImagePath));

    m->query();
    QCOMPARE(m->ended.size(), 1);
}

void DownloadTest::returnsBeforeAnythingArrives()
{
    m->server.answer(m->kImagePath, ScriptedHttpServer::page("image"_ba));
    m->download(m->image());
    QCOMPARE(m->ended.size(), 0);
    QVERIFY(QFile::exists(m->image()));
    QTRY_COMPARE(m->ended.size(), 1);
}

void DownloadTest::logsTheFileAndTheProgress()
{
    m->server.answer(m->kImagePath, ScriptedHttpServer::page("twelve bytes"_ba));
    m->download(m->image());
    QCOMPARE(m->log.lines(), QStringList(QStringLiteral("ggxxxxxxxxx") + m->image()));
    QTRY_COMPARE(m->ended.size(), 1);
    QVERIFY(m->log.contains(QStringLiteral("22222xxxxxxxxx1212")));
    QCOMPARE(m->log.startingWith(QStringLiteral("22222xxxxxxxxx")).size(), m->log.lines().size() - 1);
}

void DownloadTest::emptiesTheFileFirst()
{
    QFile old(m->image());
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write(QByteArray(5000, 'o')) == 5000);
    old.close();
    m->server.answer(m->kImagePath, ScriptedHttpServer::page("new"_ba));
    m->download(m->image());
    QCOMPARE(QFile(m->image()).size(), 0);
    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(m->contentOf(m->image()), "new"_ba);
}

void DownloadTest::endsWithWhatArrived_data()
{
    QTest::addColumn<ScriptedHttpServer::Answer>("answer");
    QTest::addColumn<QByteArray>("content");
    const QByteArray page = "<html>not here</html>"_ba;

    QTest::newRow("404 leaves the error page") << ScriptedHttpServer::page(page, 404) << page;
    QTest::newRow("500 leaves the error page") << ScriptedHttpServer::page(page, 500) << page;
    QTest::newRow("an empty answer leaves an empty file") << ScriptedHttpServer::page({}) << QByteArray();
    QTest::newRow("an empty 404 leaves an empty file") << ScriptedHttpServer::page({}, 404) << QByteArray();
    QTest::newRow("a closed connection leaves an empty file") << ScriptedHttpServer::hangUp() << QByteArray();
    auto cut = ScriptedHttpServer::page(QByteArray(200'000, 'i'));
    cut.cutAfter = 70'000;
    QTest::newRow("a cut answer leaves its beginning") << cut << QByteArray(70'000, 'i');
    cut.cutAfter = 0;
    QTest::newRow("a cut before the first byte leaves an empty file") << cut << QByteArray();
    auto late = ScriptedHttpServer::page("late"_ba);
    late.delay = 2500ms;
    QTest::newRow("an answer later than a query may wait is still taken") << late << "late"_ba;
}

void DownloadTest::endsWithWhatArrived()
{
    QFETCH(ScriptedHttpServer::Answer, answer);
    m->server.answer(m->kImagePath, answer);
    m->download(m->image());
    QTRY_COMPARE(m->ended.size(), 1);
    QTEST(m->contentOf(m->image()), "content");
    m->query();
    QCOMPARE(m->ended.size(), 1);
}

void DownloadTest::writesWhileItReceives()
{
    m->answerHeld(m->kImagePath, QByteArray(400'000, 'i'), 300'000);
    m->download(m->image());
    QTRY_VERIFY(QFile(m->image()).size() > 200'000);
    QCOMPARE(m->ended.size(), 0);
    m->server.release(m->kImagePath);
    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(QFile(m->image()).size(), 400'000);
}

void DownloadTest::asksNothingWhenTheFileCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("in a folder that does not exist") << QStringLiteral("missing/image.bin");
    QTest::newRow("below a file") << QStringLiteral("file/image.bin");
    QTest::newRow("a folder") << QStringLiteral("folder");
    QTest::newRow("a name that is too long") << QString(300, u'n');
}

void DownloadTest::asksNothingWhenTheFileCannotBeOpened()
{
    QFETCH(QString, name);
    QVERIFY(QDir(m->folder.path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QFile(m->image(QStringLiteral("file"))).open(QIODevice::WriteOnly));
    m->server.answer(m->kImagePath, ScriptedHttpServer::page("image"_ba));
    m->download(m->image(name));
    QCOMPARE(m->log.lines(), QStringList(QStringLiteral("ggxxxxxxxxx") + m->image(name)));

    // A whole exchange with the server: whatever had been sent before would have arrived.
    m->query();
    QCOMPARE(m->server.paths(), QStringList(m->kVersionPath));
    QCOMPARE(m->ended.size(), 0);

    m->download(m->image());
    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(m->contentOf(m->image()), "image"_ba);
}

void DownloadTest::survivesAFullDisk()
{
    const QString full = QStringLiteral("/dev/full");
    if (!QFile::exists(full))
        QSKIP("this machine has no device that is always full");
    QVERIFY(QFile::link(full, m->image()));
    m->server.answer(m->kImagePath, ScriptedHttpServer::page(QByteArray(1'000'000, 'i')));
    m->download(m->image());
    QTRY_COMPARE(m->ended.size(), 1);
    QTRY_COMPARE(m->repliesKept(), 0);

    m->download(m->image(QStringLiteral("other")));
    QTRY_COMPARE(m->ended.size(), 2);
    QCOMPARE(QFile(m->image(QStringLiteral("other"))).size(), 1'000'000);
}

void DownloadTest::holdsLittleOfALargeImageInMemory()
{
    constexpr qint64 kImageSize = 96 * 1024 * 1024;
    // What this process and the kernel's socket buffers may hold of it while nobody writes it to disk.
    constexpr qint64 kHeldAtMost = 24 * 1024 * 1024;
    QByteArray piece(kImageSize / 1024, '\0');
    for (qsizetype i = 0; i < piece.size(); ++i)
        piece[i] = char(i * 31 + i / 509);
    auto large = ScriptedHttpServer::page(piece);
    large.repeat = 1024;
    m->server.answer(m->kImagePath, large);
    m->download(m->image());
    QTRY_VERIFY(QFile(m->image()).size() > 0);

    // The GUI thread is busy: the server can send only what the client is ready to hold.
    qint64 sent = -1;
    QDeadlineTimer deadline(30s);
    while (sent != m->server.bytesSent(m->kImagePath) && !deadline.hasExpired()) {
        sent = m->server.bytesSent(m->kImagePath);
        QThread::msleep(300);
    }
    const qint64 held = sent - QFile(m->image()).size();
    QVERIFY2(held < kHeldAtMost, qPrintable(QString::number(held)));

    QTRY_COMPARE_WITH_TIMEOUT(m->ended.size(), 1, 30'000);
    QCryptographicHash expected(QCryptographicHash::Sha256);
    for (int i = 0; i < large.repeat; ++i)
        expected.addData(piece);
    QCryptographicHash stored(QCryptographicHash::Sha256);
    QFile file(m->image());
    QVERIFY(file.open(QIODevice::ReadOnly) && stored.addData(&file));
    QCOMPARE(stored.result(), expected.result());
}

QUILLON_TEST_CORE(DownloadTest)
#include "tst_download.moc"
