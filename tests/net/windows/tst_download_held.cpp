// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// An image file that another program, a virus scanner for example, has open when the download wants to write
// it.
#include "tests/net/ClientTest.h"
#include "tests/support/HeldFile.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
/// For a machine that is busy with other things.
constexpr int kPatience = 30'000;
} // namespace

class DownloadHeldTest : public ClientTest {
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void waitsUntilItIsLetGo_data();
    void waitsUntilItIsLetGo();
    void asksNothingWhenItIsNeverLetGo();
    void aLaterDownloadTakesItsPlace();
    void aFileThatMayBeWrittenMeanwhileIsNotWaitedFor();

private:
    using Share = HeldFile::Share;

    std::unique_ptr<HeldFile> hold(Share share) const
    {
        return std::make_unique<HeldFile>(stage().image(), share);
    }
};

void DownloadHeldTest::init()
{
    ClientTest::init();
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("new image"));
    QFile old(stage().image());
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("an image of earlier times") > 0);
}

void DownloadHeldTest::waitsUntilItIsLetGo_data()
{
    QTest::addColumn<Share>("share");
    QTest::newRow("held by one who shares nothing") << Share::Nothing;
    QTest::newRow("held by one who lets it be read") << Share::Reading;
}

void DownloadHeldTest::waitsUntilItIsLetGo()
{
    QFETCH(HeldFile::Share, share);
    auto scanner = hold(share);
    QElapsedTimer time;
    time.start();
    stage().download(stage().image());
    QVERIFY2(time.elapsed() < 1500, qPrintable(QString::number(time.elapsed()))); // it does not wait here
    QTest::qWait(250);
    QCOMPARE(stage().server.paths(), QStringList());

    scanner.reset();
    QTRY_COMPARE_WITH_TIMEOUT(stage().ended.size(), 1, kPatience);
    QCOMPARE(contentOf(stage().image()), QByteArray("new image"));
    QCOMPARE(stage().server.paths(), QStringList(stage().kImagePath));
    QTest::qWait(250);
    QCOMPARE(stage().ended.size(), 1);
    QCOMPARE(stage().server.paths(), QStringList(stage().kImagePath));
}

void DownloadHeldTest::asksNothingWhenItIsNeverLetGo()
{
    auto scanner = hold(Share::Reading);
    stage().download(stage().image());
    QTRY_VERIFY_WITH_TIMEOUT(!ClientInside::heldFileTimer()->isActive(), kPatience);
    scanner.reset();
    QTest::qWait(500);
    QCOMPARE(stage().server.paths(), QStringList());
    QCOMPARE(stage().ended.size(), 0);
    QCOMPARE(contentOf(stage().image()), QByteArray("an image of earlier times"));
}

void DownloadHeldTest::aLaterDownloadTakesItsPlace()
{
    auto scanner = hold(Share::Reading);
    stage().download(stage().image());
    stage().download(stage().image(u"other.bin"_s));
    QTRY_COMPARE_WITH_TIMEOUT(stage().ended.size(), 1, kPatience);
    scanner.reset();
    QTest::qWait(500);
    QCOMPARE(stage().ended.size(), 1);
    QCOMPARE(contentOf(stage().image()), QByteArray("an image of earlier times"));
    QCOMPARE(contentOf(stage().image(u"other.bin"_s)), QByteArray("new image"));
}

void DownloadHeldTest::aFileThatMayBeWrittenMeanwhileIsNotWaitedFor()
{
    const auto scanner = hold(Share::ReadingAndWriting);
    stage().download(stage().image());
    QVERIFY(!ClientInside::heldFileTimer()->isActive());
    QTRY_COMPARE_WITH_TIMEOUT(stage().ended.size(), 1, kPatience);
    QCOMPARE(contentOf(stage().image()), QByteArray("new image"));
}

QUILLON_TEST(DownloadHeldTest)
#include "tst_download_held.moc"
