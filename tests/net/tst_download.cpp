// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/net/ClientTest.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QThread>
#include <QtTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The download of an image into a file.
class DownloadTest : public ClientTest {
    Q_OBJECT

private Q_SLOTS:
    void storesTheImageAndSaysSoOnce();
    void returnsBeforeAnythingArrives();
    void logsTheFileAndTheProgress();
    void emptiesTheFileFirst();
    void endsWithWhatArrived_data();
    void endsWithWhatArrived();
    void writesWhileItReceives();
    void unpacksACompressedImagePieceByPiece();
    void asksNothingWhenTheFileCannotBeOpened_data();
    void asksNothingWhenTheFileCannotBeOpened();
    void survivesAFullDisk();
    void holdsLittleOfALargeImageInMemory();

private:
};

void DownloadTest::storesTheImageAndSaysSoOnce()
{
    QByteArray image(300'000, '\0');
    for (qsizetype i = 0; i < image.size(); ++i)
        image[i] = char(i * 7 + i / 251);
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page(image));
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), image);
    QCOMPARE(stage().server.paths(), QStringList(stage().kImagePath));

    stage().query();
    QCOMPARE(stage().ended.size(), 1);
}

void DownloadTest::returnsBeforeAnythingArrives()
{
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("image"_ba));
    stage().download(stage().image());
    QCOMPARE(stage().ended.size(), 0);
    QVERIFY(QFile::exists(stage().image()));
    QTRY_COMPARE(stage().ended.size(), 1);
}

void DownloadTest::logsTheFileAndTheProgress()
{
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("twelve bytes"_ba));
    stage().download(stage().image());
    QCOMPARE(stage().log.lines(), QStringList(QStringLiteral("ggxxxxxxxxx ") + stage().image()));
    QTRY_COMPARE(stage().ended.size(), 1);
    QVERIFY(stage().log.contains(QStringLiteral("22222xxxxxxxxx 12 12")));
    QCOMPARE(stage().log.startingWith(QStringLiteral("22222xxxxxxxxx")).size(),
             stage().log.lines().size() - 1);
}

void DownloadTest::emptiesTheFileFirst()
{
    QFile old(stage().image());
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write(QByteArray(5000, 'o')) == 5000);
    old.close();
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("new"_ba));
    stage().download(stage().image());
    QCOMPARE(QFile(stage().image()).size(), 0);
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), "new"_ba);
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
    stage().server.answer(stage().kImagePath, answer);
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);
    QTEST(contentOf(stage().image()), "content");
    stage().query();
    QCOMPARE(stage().ended.size(), 1);
}

void DownloadTest::writesWhileItReceives()
{
    stage().answerHeld(stage().kImagePath, QByteArray(400'000, 'i'), 300'000);
    stage().download(stage().image());
    QTRY_VERIFY(QFile(stage().image()).size() > 200'000);
    QCOMPARE(stage().ended.size(), 0);
    stage().server.release(stage().kImagePath);
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(QFile(stage().image()).size(), 400'000);
}

/// A thousand bytes of an image may come in one.
void DownloadTest::unpacksACompressedImagePieceByPiece()
{
    const QByteArray image(9 * kMiB, 'i');
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::compressedPage(image));
    qint64 written = 0;
    qint64 largest = 0;
    QTimer eachTurn;
    connect(&eachTurn, &QTimer::timeout, this, [&] {
        const qint64 now = QFileInfo(stage().image()).size();
        largest = std::max(largest, now - written);
        written = now;
    });
    eachTurn.start(0);
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), image);
    QVERIFY2(largest <= 2 * kMiB, qPrintable(QString::number(largest)));
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
    QVERIFY(QDir(stage().folder.path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QFile(stage().image(QStringLiteral("file"))).open(QIODevice::WriteOnly));
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("image"_ba));
    stage().download(stage().image(name));
    QCOMPARE(stage().log.lines(), QStringList(QStringLiteral("ggxxxxxxxxx ") + stage().image(name)));

    // A whole exchange with the server: whatever had been sent before would have arrived.
    stage().query();
    QCOMPARE(stage().server.paths(), QStringList(stage().kVersionPath));
    QCOMPARE(stage().ended.size(), 0);

    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), "image"_ba);
}

void DownloadTest::survivesAFullDisk()
{
    const QString full = QStringLiteral("/dev/full");
    if (!QFile::exists(full))
        QSKIP("this machine has no device that is always full");
    QVERIFY(QFile::link(full, stage().image()));
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page(QByteArray(1'000'000, 'i')));
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);
    QTRY_COMPARE(stage().repliesKept(), 0);

    stage().download(stage().image(QStringLiteral("other")));
    QTRY_COMPARE(stage().ended.size(), 2);
    QCOMPARE(QFile(stage().image(QStringLiteral("other"))).size(), 1'000'000);
}

void DownloadTest::holdsLittleOfALargeImageInMemory()
{
    constexpr qint64 kImageSize = 96 * kMiB;
    // What this process and the kernel's socket buffers may hold of it while nobody writes it to disk.
    constexpr qint64 kHeldAtMost = 24 * kMiB;
    QByteArray piece(kImageSize / 1024, '\0');
    for (qsizetype i = 0; i < piece.size(); ++i)
        piece[i] = char(i * 31 + i / 509);
    auto large = ScriptedHttpServer::page(piece);
    large.repeat = 1024;
    stage().server.answer(stage().kImagePath, large);
    stage().download(stage().image());
    QTRY_VERIFY(QFile(stage().image()).size() > 0);

    // The GUI thread is busy: the server can send only what the client is ready to hold.
    qint64 sent = -1;
    QDeadlineTimer deadline(30s);
    while (sent != stage().server.bytesSent(stage().kImagePath) && !deadline.hasExpired()) {
        sent = stage().server.bytesSent(stage().kImagePath);
        QThread::msleep(300);
    }
    const qint64 held = sent - QFile(stage().image()).size();
    QVERIFY2(held < kHeldAtMost, qPrintable(QString::number(held)));

    QTRY_COMPARE_WITH_TIMEOUT(stage().ended.size(), 1, 30'000);
    QCryptographicHash expected(QCryptographicHash::Sha256);
    for (int i = 0; i < large.repeat; ++i)
        expected.addData(piece);
    QCryptographicHash stored(QCryptographicHash::Sha256);
    QFile file(stage().image());
    QVERIFY(file.open(QIODevice::ReadOnly) && stored.addData(&file));
    QCOMPARE(stored.result(), expected.result());
}

QUILLON_TEST_CORE(DownloadTest)
#include "tst_download.moc"
