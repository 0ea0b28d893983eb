#include "tests/net/NetworkingFixture.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A download and what goes on at the same time: queries, another download, a receiver that leaves.
class DownloadOverlapTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<NetworkingFixture>(); }
    void cleanup() { m.reset(); }
    void letsQueriesThrough();
    void endsInsideAQuery();
    void mayBeStartedAgainInItsOwnSignal();
    void neverMixesTwoDownloads_data();
    void neverMixesTwoDownloads();
    void anUnwritablePathEndsNoOtherFile();
    void outlivesItsReceiver();

private:
    std::unique_ptr<NetworkingFixture> m;
};

void DownloadOverlapTest::letsQueriesThrough()
{
    m->answerHeld(m->kImagePath, QByteArray(100'000, 'i'), 40'000);
    m->server.answer(m->kVersionPath, ScriptedHttpServer::version("1.2.3"));
    m->download(m->image());
    QTRY_VERIFY(m->server.bytesSent(m->kImagePath) > 40'000);
    QCOMPARE(m->query(), QStringLiteral("1.2.3"));
    QCOMPARE(m->query(QStringLiteral("/missing")), QStringLiteral("104"));
    QCOMPARE(m->ended.size(), 0);
    m->server.release(m->kImagePath);
    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(m->contentOf(m->image()), QByteArray(100'000, 'i'));
}

void DownloadOverlapTest::endsInsideAQuery()
{
    m->server.answer(m->kImagePath, ScriptedHttpServer::page("image"_ba));
    auto late = ScriptedHttpServer::version("1.2.3");
    late.delay = 500ms;
    m->server.answer(m->kVersionPath, late);
    m->download(m->image());
    QCOMPARE(m->query(), QStringLiteral("1.2.3"));
    QCOMPARE(m->ended.size(), 1);
    QCOMPARE(m->contentOf(m->image()), "image"_ba);
}

void DownloadOverlapTest::mayBeStartedAgainInItsOwnSignal()
{
    const QString second = m->image(QStringLiteral("second"));
    m->server.answer(m->kImagePath, ScriptedHttpServer::page("first image"_ba));
    m->server.answer(QStringLiteral("/second"), ScriptedHttpServer::page("second image"_ba));
    QObject once;
    connect(m->client, &networking_class::network_finish_download, &once, [this, &once, second] {
        once.disconnect();
        m->client->disconnect(&once);
        QCOMPARE(m->contentOf(m->image()), "first image"_ba);
        m->download(second, QStringLiteral("/second"));
    });
    m->download(m->image());
    QTRY_COMPARE(m->ended.size(), 2);
    QCOMPARE(m->contentOf(m->image()), "first image"_ba);
    QCOMPARE(m->contentOf(second), "second image"_ba);
    QTRY_COMPARE(m->repliesKept(), 0);
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
    const QString second = m->image(secondName);
    const QByteArray secondImage(200'000, '2');
    m->answerHeld(m->kImagePath, QByteArray(300'000, '1'), 100'000);
    m->answerHeld(QStringLiteral("/second"), secondImage, 50'000);

    m->download(m->image());
    QTRY_VERIFY(QFile(m->image()).size() > 50'000);
    m->download(second, QStringLiteral("/second"));
    if (firstGoesOn)
        m->server.release(m->kImagePath);
    QTRY_VERIFY(QFile(second).size() > 30'000);
    // An end that is announced before the second image is whole would start the flashing tool on half of it.
    QCOMPARE(m->ended.size(), 0);
    m->server.release(QStringLiteral("/second"));

    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(m->contentOf(second), secondImage);
    if (second != m->image())
        QVERIFY(!m->contentOf(m->image()).contains('2'));
    QTRY_COMPARE(m->repliesKept(), 0);
    QCOMPARE(m->ended.size(), 1);
}

void DownloadOverlapTest::anUnwritablePathEndsNoOtherFile()
{
    m->answerHeld(m->kImagePath, QByteArray(300'000, '1'), 100'000);
    m->download(m->image());
    QTRY_VERIFY(QFile(m->image()).size() > 50'000);
    m->download(m->image(QStringLiteral("missing/image.bin")));
    m->server.release(m->kImagePath);
    m->query();
    QVERIFY(!m->contentOf(m->image()).contains('2'));
    QVERIFY(!QFile::exists(m->image(QStringLiteral("missing/image.bin"))));

    m->server.answer(QStringLiteral("/second"), ScriptedHttpServer::page("second"_ba));
    const auto before = m->ended.size();
    m->download(m->image(QStringLiteral("second")), QStringLiteral("/second"));
    QTRY_COMPARE(m->ended.size(), before + 1);
    QCOMPARE(m->contentOf(m->image(QStringLiteral("second"))), "second"_ba);
}

void DownloadOverlapTest::outlivesItsReceiver()
{
    m->answerHeld(m->kImagePath, QByteArray(100'000, 'i'), 40'000);
    auto receiver = std::make_unique<QObject>();
    int heard = 0;
    connect(m->client, &networking_class::network_finish_download, receiver.get(), [&heard] { ++heard; });
    m->download(m->image());
    QTRY_VERIFY(m->server.bytesSent(m->kImagePath) > 40'000);
    receiver.reset();
    m->server.release(m->kImagePath);
    QTRY_COMPARE(m->ended.size(), 1);
    QCOMPARE(heard, 0);
    QCOMPARE(m->contentOf(m->image()), QByteArray(100'000, 'i'));
}

QUILLON_TEST_CORE(DownloadOverlapTest)
#include "tst_download_overlap.moc"
