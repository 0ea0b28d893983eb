// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Belongings.h"
#include "rig/Rig.h"
#include "tests/rig/PlayedText.h"
#include "tests/support/Files.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <array>

using namespace rig;

class RigBelongingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void whatIsLeftIsNamed_data();
    void whatIsLeftIsNamed();
    void whatIsGivenBackInTimeIsNotLeft();
    void whatWasThereBeforeTheMarkIsNotLeft();
    void aMarkWaitsForWhatIsStillEnding();
    void withoutAMarkNothingCanBeExpected();
    void reportAndWholeImagesMayStay();
    void oneThingDoesNotMakeUpForAnother();

private:
    QString play(const QString &text);
    static QByteArray download(QNetworkAccessManager &client);

    Rig m_rig;
    std::unique_ptr<QTemporaryDir> m_everybodys;
    std::unique_ptr<ScenarioPlayer> m_player;
};

void RigBelongingsTest::initTestCase()
{
    QString error;
    QVERIFY2(m_rig.start(&error), qPrintable(error));
}

void RigBelongingsTest::init()
{
    m_everybodys = std::make_unique<QTemporaryDir>();
    qputenv("ALLUSERSPROFILE", QFile::encodeName(m_everybodys->path()));
    m_rig.server().forgetRequests();
    m_player = std::make_unique<ScenarioPlayer>(m_rig, PanelControls());
}

// A player remembers its mark from one scenario to the next.
QString RigBelongingsTest::play(const QString &text)
{
    QSignalSpy finished(m_player.get(), &ScenarioPlayer::finished);
    m_player->play(scenario(text));
    return verdictOf(finished);
}

QByteArray RigBelongingsTest::download(QNetworkAccessManager &client)
{
    const QUrl image(QStringLiteral("http://update.quillon.example/dnfile_test.aspx?f_sn=155"));
    const std::unique_ptr<QNetworkReply> reply(client.get(QNetworkRequest(image)));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    return finished.wait(kPatience) ? reply->readAll() : QByteArray();
}

void RigBelongingsTest::whatIsLeftIsNamed_data()
{
    QTest::addColumn<std::function<std::function<void()>()>>("take"); // gives what gives it back
    QTest::addColumn<QString>("named");
    using Give = std::function<void()>;
    using Take = std::function<Give()>;
    QTest::newRow("a handle") << Take([]() -> Give {
        auto file = std::make_shared<QFile>(QStringLiteral("/dev/null"));
        return file->open(QIODevice::ReadOnly) ? [file] { file->close(); } : Give();
    }) << QStringLiteral("handle /dev/null");
    QTest::newRow("a connection") << Take([]() -> Give {
        auto server = std::make_shared<QTcpServer>();
        auto client = std::make_shared<QTcpSocket>();
        server->setProxy(QNetworkProxy::NoProxy);
        client->setProxy(QNetworkProxy::NoProxy);
        if (!server->listen(QHostAddress::LocalHost))
            return Give();
        client->connectToHost(server->serverAddress(), server->serverPort());
        if (!client->waitForConnected(kPatience))
            return Give();
        return [server, client]() mutable {
            client.reset();
            server.reset();
        };
    }) << QStringLiteral("handle socket");
    QTest::newRow("more dead sockets than Qt keeps") << Take([]() -> Give {
        auto sockets = std::make_shared<std::array<QTcpSocket, 7>>();
        const bool bound = std::all_of(sockets->begin(), sockets->end(), [](QTcpSocket &socket) {
            socket.setProxy(QNetworkProxy::NoProxy);
            return socket.bind();
        });
        return bound ? [sockets] { sockets->back().abort(); } : Give();
    }) << QStringLiteral("handle socket that leads nowhere");
    QTest::newRow("a thread") << Take([]() -> Give {
        auto *thread = new QThread;
        thread->setObjectName(QStringLiteral("Forgotten"));
        thread->start();
        return [thread] {
            thread->quit();
            thread->wait();
            delete thread;
        };
    }) << QStringLiteral("thread Forgotten");
    QTest::newRow("a process") << Take([]() -> Give {
        auto *process = new QProcess;
        process->start(QStringLiteral("cat"));
        return process->waitForStarted() ? [process] { delete process; } : Give();
    }) << QStringLiteral("process cat");
    QTest::newRow("a file") << Take([]() -> Give {
        const QString path = QDir::tempPath() + QStringLiteral("/half-an-image.part");
        writeFile(path, "half");
        return [path] { QFile::remove(path); };
    }) << QStringLiteral("file ") + QDir::tempPath() + QStringLiteral("/half-an-image.part");
    QTest::newRow("an image that was never sent") << Take([]() -> Give {
        const QString path = qEnvironmentVariable("ALLUSERSPROFILE") + QStringLiteral("/R2_PC1.2.0.bin");
        writeFile(path, "half");
        return [path] { QFile::remove(path); };
    }) << QStringLiteral("R2_PC1.2.0.bin");
}

void RigBelongingsTest::whatIsLeftIsNamed()
{
    QFETCH(std::function<std::function<void()>()>, take);
    QFETCH(QString, named);
    QCOMPARE(play(QStringLiteral("mark\nexpect nothing left 1s")), QString());
    const std::function<void()> giveBack = take();
    QVERIFY(giveBack);
    const QString verdict = play(QStringLiteral("expect nothing left 1s"));
    giveBack();
    QVERIFY2(verdict.startsWith(QStringLiteral("x.scn:1: expect nothing left 1s: ")), qPrintable(verdict));
    QVERIFY2(verdict.contains(named), qPrintable(verdict));
    QCOMPARE(play(QStringLiteral("expect nothing left 5s")), QString());
}

void RigBelongingsTest::whatIsGivenBackInTimeIsNotLeft()
{
    QCOMPARE(play(QStringLiteral("mark")), QString());
    QFile file(QStringLiteral("/dev/null"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QTimer::singleShot(std::chrono::seconds(3), &file, &QFile::close);
    QCOMPARE(play(QStringLiteral("expect nothing left 30s")), QString());
    QVERIFY(!file.isOpen());
}

void RigBelongingsTest::whatWasThereBeforeTheMarkIsNotLeft()
{
    QFile file(QStringLiteral("/dev/null"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(play(QStringLiteral("mark\nexpect nothing left 1s")), QString());
}

// Else what is forgotten later would take its place.
void RigBelongingsTest::aMarkWaitsForWhatIsStillEnding()
{
    QFile ending(QStringLiteral("/dev/null"));
    QVERIFY(ending.open(QIODevice::ReadOnly));
    QTimer::singleShot(std::chrono::milliseconds(500), &ending, &QFile::close);
    QCOMPARE(play(QStringLiteral("mark")), QString());
    QVERIFY(!ending.isOpen());
    QVERIFY(ending.open(QIODevice::ReadOnly));
    QVERIFY(!play(QStringLiteral("expect nothing left 1s")).isEmpty());
}

void RigBelongingsTest::withoutAMarkNothingCanBeExpected()
{
    QCOMPARE(play(QStringLiteral("expect nothing left")),
             QStringLiteral("x.scn:1: expect nothing left: nothing was marked"));
}

void RigBelongingsTest::reportAndWholeImagesMayStay()
{
    QNetworkAccessManager client;
    const QByteArray image = download(client);
    QVERIFY(!image.isEmpty());
    QCOMPARE(play(QStringLiteral("mark")), QString());
    QCOMPARE(download(client), image);
    const QString path = m_everybodys->filePath(QStringLiteral("R2_PC1.1.1.bin"));
    writeFile(path, image);
    writeFile(m_everybodys->filePath(QStringLiteral("R2_PC1.1.2.bin")), QByteArray());
    writeFile(m_everybodys->filePath(QStringLiteral("Firmware_bin.txt")), "success 1");
    QCOMPARE(play(QStringLiteral("expect nothing left")), QString());
    // What the server sent is remembered beyond its own list.
    QCOMPARE(play(QStringLiteral("forget\nexpect nothing left")), QString());
    writeFile(path, image.chopped(1));
    QCOMPARE(play(QStringLiteral("expect nothing left 1s")),
             QStringLiteral("x.scn:1: expect nothing left 1s: file ") + path);
}

void RigBelongingsTest::oneThingDoesNotMakeUpForAnother()
{
    const Belongings before{{QStringLiteral("a"), QStringLiteral("a"), QStringLiteral("b")}, {}, {}, {}};
    const Belongings after{
        {QStringLiteral("a"), QStringLiteral("a"), QStringLiteral("a")}, {}, {QStringLiteral("a")}, {}};
    QCOMPARE(after.beyond(before), (QStringList{QStringLiteral("thread a"), QStringLiteral("process a")}));
    QCOMPARE(before.beyond(after), QStringList(QStringLiteral("thread b")));
    QVERIFY(before.beyond(before).isEmpty());
}

QUILLON_TEST(RigBelongingsTest)
#include "tst_rig_belongings.moc"
