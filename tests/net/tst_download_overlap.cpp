// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/net/ClientTest.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A download and what goes on at the same time: queries, another download, a receiver that leaves.
class DownloadOverlapTest : public ClientTest {
    Q_OBJECT

private Q_SLOTS:
    void letsQueriesThrough();
    void endsInsideAQuery();
    void mayBeStartedAgainInItsOwnSignal();
    void neverMixesTwoDownloads_data();
    void neverMixesTwoDownloads();
    void anUnwritablePathEndsNoOtherFile();
    void outlivesItsReceiver();
    void isGivenUpWhenNobodyListens();

private:
};

void DownloadOverlapTest::letsQueriesThrough()
{
    stage().answerHeld(stage().kImagePath, QByteArray(100'000, 'i'), 40'000);
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::version("1.2.3"));
    stage().download(stage().image());
    QTRY_VERIFY(stage().server.bytesSent(stage().kImagePath) > 40'000);
    QCOMPARE(stage().query(), QStringLiteral("1.2.3"));
    QCOMPARE(stage().query(QStringLiteral("/missing")), QStringLiteral("104"));
    QCOMPARE(stage().ended.size(), 0);
    stage().server.release(stage().kImagePath);
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), QByteArray(100'000, 'i'));
}

void DownloadOverlapTest::endsInsideAQuery()
{
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("image"_ba));
    auto late = ScriptedHttpServer::version("1.2.3");
    late.delay = 500ms;
    stage().server.answer(stage().kVersionPath, late);
    stage().download(stage().image());
    QCOMPARE(stage().query(), QStringLiteral("1.2.3"));
    QCOMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), "image"_ba);
}

void DownloadOverlapTest::mayBeStartedAgainInItsOwnSignal()
{
    const QString second = stage().image(QStringLiteral("second"));
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("first image"_ba));
    stage().server.answer(QStringLiteral("/second"), ScriptedHttpServer::page("second image"_ba));
    QObject once;
    connect(stage().client, &networking_class::network_finish_download, &once, [this, &once, second] {
        once.disconnect();
        stage().client->disconnect(&once);
        QCOMPARE(contentOf(stage().image()), "first image"_ba);
        stage().download(second, QStringLiteral("/second"));
    });
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 2);
    QCOMPARE(contentOf(stage().image()), "first image"_ba);
    QCOMPARE(contentOf(second), "second image"_ba);
    QTRY_COMPARE(stage().repliesKept(), 0);
}

void DownloadOverlapTest::neverMixesTwoDownloads_data()
{
    QTest::addColumn<QString>("secondName");
    QTest::addColumn<bool>("firstGoesOn");
    QTest::newRow("into two files, the first stuck") << QStringLiteral("second") << false;
    QTest::newRow("into two files, the first going on") << QStringLiteral("second") << true;
    QTest::newRow("into the same file, the first stuck") << QStringLiteral("image.bin") << false;
    QTest::newRow("into the same file, the first going on") << QStringLiteral("image.bin") << true;
}

void DownloadOverlapTest::neverMixesTwoDownloads()
{
    QFETCH(QString, secondName);
    QFETCH(bool, firstGoesOn);
    const QString second = stage().image(secondName);
    const QByteArray secondImage(200'000, '2');
    stage().answerHeld(stage().kImagePath, QByteArray(300'000, '1'), 100'000);
    stage().answerHeld(QStringLiteral("/second"), secondImage, 50'000);

    stage().download(stage().image());
    QTRY_VERIFY(QFile(stage().image()).size() > 50'000);
    stage().download(second, QStringLiteral("/second"));
    if (firstGoesOn)
        stage().server.release(stage().kImagePath);
    QTRY_VERIFY(QFile(second).size() > 30'000);
    // An end that is announced before the second image is whole would start the flashing tool on half of it.
    QCOMPARE(stage().ended.size(), 0);
    stage().server.release(QStringLiteral("/second"));

    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(second), secondImage);
    if (second != stage().image())
        QVERIFY2(!QFile::exists(stage().image()), "half an image stays behind");
    QTRY_COMPARE(stage().repliesKept(), 0);
    QCOMPARE(stage().ended.size(), 1);
}

void DownloadOverlapTest::anUnwritablePathEndsNoOtherFile()
{
    stage().answerHeld(stage().kImagePath, QByteArray(300'000, '1'), 100'000);
    stage().download(stage().image());
    QTRY_VERIFY(QFile(stage().image()).size() > 50'000);
    stage().download(stage().image(QStringLiteral("missing/image.bin")));
    stage().server.release(stage().kImagePath);
    stage().query();
    QVERIFY(!QFile::exists(stage().image()));
    QVERIFY(!QFile::exists(stage().image(QStringLiteral("missing/image.bin"))));

    stage().server.answer(QStringLiteral("/second"), ScriptedHttpServer::page("second"_ba));
    const auto before = stage().ended.size();
    stage().download(stage().image(QStringLiteral("second")), QStringLiteral("/second"));
    QTRY_COMPARE(stage().ended.size(), before + 1);
    QCOMPARE(contentOf(stage().image(QStringLiteral("second"))), "second"_ba);
}

void DownloadOverlapTest::outlivesItsReceiver()
{
    stage().answerHeld(stage().kImagePath, QByteArray(100'000, 'i'), 40'000);
    auto receiver = std::make_unique<QObject>();
    int heard = 0;
    connect(stage().client, &networking_class::network_finish_download, receiver.get(),
            [&heard] { ++heard; });
    stage().download(stage().image());
    QTRY_VERIFY(stage().server.bytesSent(stage().kImagePath) > 40'000);
    receiver.reset();
    stage().server.release(stage().kImagePath);
    QTRY_COMPARE(stage().ended.size(), 1);
    QCOMPARE(heard, 0);
    QCOMPARE(contentOf(stage().image()), QByteArray(100'000, 'i'));
}

void DownloadOverlapTest::isGivenUpWhenNobodyListens()
{
    stage().answerHeld(stage().kImagePath, QByteArray(100'000, 'i'), 40'000);
    stage().download(stage().image());
    QTRY_VERIFY(QFile(stage().image()).size() > 0);
    stage().client->giveUpUnheardDownload();
    QVERIFY2(QFile::exists(stage().image()), "somebody listens");

    disconnect(stage().client, &networking_class::network_finish_download, nullptr, nullptr);
    stage().client->giveUpUnheardDownload();
    QVERIFY(!QFile::exists(stage().image()));
    QTRY_COMPARE(stage().repliesKept(), 0);
    stage().client->giveUpUnheardDownload(); // there is none
}

QUILLON_TEST_CORE(DownloadOverlapTest)
#include "tst_download_overlap.moc"
