// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/net/ClientTest.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QTimer>
#include <QtTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The shape of the class, and the version query but for what it makes of the answer.
class NetworkingTest : public ClientTest {
    Q_OBJECT

private Q_SLOTS:
    void init() override
    {
        ClientTest::init();
        stage().rememberOldNotes();
    }
    void hasOneSignalAndThreeSlotsInThisOrder();
    void thereIsOneInstanceWithoutParent();
    void logsAFailedQuery_data();
    void logsAFailedQuery();
    void logsNothingOfAnAnsweredQuery();
    void givesUpAfterTwoSeconds_data();
    void givesUpAfterTwoSeconds();
    void waitsForALateAnswer();
    void asksForTheAddressAsItIs_data();
    void asksForTheAddressAsItIs();
    void addsNothingToTheRequest();
    void deliversEventsWhileItWaits();
    void deliversWhatWasPostedBeforeItWaited();
    void mayBeAskedAgainWhileItWaits_data();
    void mayBeAskedAgainWhileItWaits();
    void releasesItsReplies();

private:
};

void NetworkingTest::hasOneSignalAndThreeSlotsInThisOrder()
{
    const QMetaObject &meta = networking_class::staticMetaObject;
    QCOMPARE(meta.className(), "networking_class");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const bool isSignal = method.methodType() == QMetaMethod::Signal;
        const bool isPrivateSlot
            = method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private;
        methods.append((isSignal            ? u"signal "_s
                            : isPrivateSlot ? u"private slot "_s
                                            : u"other "_s)
                       + QString::fromLatin1(method.methodSignature()));
    }
    QCOMPARE(methods,
             (QStringList{u"signal network_finish_download()"_s, u"private slot httpFinished()"_s,
                          u"private slot httpReadyRead()"_s,
                          u"private slot updateDataReadProgress(qlonglong,qlonglong)"_s}));
}

void NetworkingTest::thereIsOneInstanceWithoutParent()
{
    QVERIFY(networking_class::getInstance());
    QCOMPARE(networking_class::getInstance(), stage().client);
    QVERIFY(!stage().client->parent());
    QVERIFY(!ClientInside::manager()->parent());
}

void NetworkingTest::logsAFailedQuery_data()
{
    QTest::addColumn<ScriptedHttpServer::Answer>("answer");
    QTest::addColumn<QString>("codes");
    QTest::addColumn<QString>("error");

    const QString address = stage().address(stage().kVersionPath);
    QTest::newRow("status 404") << ScriptedHttpServer::page("no"_ba, 404) << u"404 203 "_s
                                << u"Error transferring "_s + address + u" - server replied: Scripted"_s;
    QTest::newRow("status 500 with a list")
        << ScriptedHttpServer::page("[{}]"_ba, 500) << u"500 401 "_s
        << u"Error transferring "_s + address + u" - server replied: Scripted"_s;
    auto wordy = ScriptedHttpServer::page("no"_ba, 404);
    wordy.reason = "\x1b[31m"_ba + QByteArray(100'000, 'r');
    QTest::newRow("a reason of the server's without end")
        << wordy << u"404 203 "_s
        << QString(u"Error transferring "_s + address + u" - server replied: [31m"_s)
               .leftJustified(199, u'r');
    QTest::newRow("no answer at all")
        << ScriptedHttpServer::silence() << u"0 5 "_s << u"Operation canceled"_s;
    QTest::newRow("closed unanswered") << ScriptedHttpServer::hangUp() << u"0 2 "_s << u"Connection closed"_s;
}

void NetworkingTest::logsAFailedQuery()
{
    QFETCH(ScriptedHttpServer::Answer, answer);
    QFETCH(QString, codes);
    QFETCH(QString, error);
    stage().server.answer(stage().kVersionPath, answer);
    stage().query();
    QCOMPARE(stage().log.startingWith(u"request"_s),
             (QStringList{u"request protobufHttp handle errors here"_s,
                          u"request protobufHttp found error ....code: %d %d\n "_s + codes + error}));
}

void NetworkingTest::logsNothingOfAnAnsweredQuery()
{
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::page("not a list"_ba));
    QCOMPARE(stage().query(), u"104"_s);
    QCOMPARE(stage().log.lines(), QStringList());
}

void NetworkingTest::givesUpAfterTwoSeconds_data()
{
    QTest::addColumn<ScriptedHttpServer::Answer>("answer");
    QTest::newRow("a silent server") << ScriptedHttpServer::silence();
    auto stuck = ScriptedHttpServer::page(R"([{"f_ver":"1.2.3"}])"_ba + QByteArray(100, ' '));
    stuck.holdAfter = 60;
    QTest::newRow("an answer that stops behind a complete list") << stuck;
    stuck.holdAfter = 0;
    QTest::newRow("an answer that stops behind its head") << stuck;
}

void NetworkingTest::givesUpAfterTwoSeconds()
{
    QFETCH(ScriptedHttpServer::Answer, answer);
    stage().server.answer(stage().kVersionPath, answer);
    QElapsedTimer time;
    time.start();
    QCOMPARE(stage().query(), u"104"_s);
    const auto waited = std::chrono::milliseconds(time.elapsed());
    QVERIFY2(waited >= 1999ms && waited < 3500ms, qPrintable(QString::number(waited.count())));
    QCOMPARE(stage().log.count(u"request protobufHttp handle errors here"_s), 1);
    QCOMPARE(stage().client->f_remark, u"旧说明"_s);
}

void NetworkingTest::waitsForALateAnswer()
{
    auto late = ScriptedHttpServer::version("1.2.3", "新", "new");
    late.delay = 1500ms;
    stage().server.answer(stage().kVersionPath, late);
    QCOMPARE(stage().query(), u"1.2.3"_s);
    QCOMPARE(stage().log.lines(), QStringList());
}

void NetworkingTest::asksForTheAddressAsItIs_data()
{
    QTest::addColumn<QString>("path");
    for (const char *project : {"R1MCU", "R2MCU", "R1OTG", "R2OTG"})
        QTest::newRow(project) << u"/upinfo_test.aspx?proj_name="_s + QLatin1String(project);
}

void NetworkingTest::asksForTheAddressAsItIs()
{
    QFETCH(QString, path);
    stage().server.answer(path, ScriptedHttpServer::version("4.5.6"));
    QCOMPARE(stage().query(path), u"4.5.6"_s);
    QCOMPARE(stage().server.requests().size(), 1);
    QCOMPARE(stage().server.requests().first().method, "GET"_ba);
    QCOMPARE(stage().server.requests().first().url, QUrl(stage().address(path)));
}

void NetworkingTest::addsNothingToTheRequest()
{
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::version("1.2.3"));
    stage().query();
    QNetworkAccessManager plain;
    QNetworkReply *reply = plain.get(QNetworkRequest(QUrl(stage().address(stage().kVersionPath))));
    QTRY_VERIFY(reply->isFinished());
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("image"_ba));
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);

    QCOMPARE(stage().server.requests().size(), 3);
    QCOMPARE(stage().server.requests().at(0).head, stage().server.requests().at(1).head);
    QCOMPARE(stage().server.requests().at(2).head,
             QByteArray(stage().server.requests().at(1).head)
                 .replace(stage().kVersionPath.toUtf8(), stage().kImagePath.toUtf8()));
}

void NetworkingTest::deliversEventsWhileItWaits()
{
    auto late = ScriptedHttpServer::version("1.2.3");
    late.delay = 500ms;
    stage().server.answer(stage().kVersionPath, late);
    QTimer ticking;
    QSignalSpy ticks(&ticking, &QTimer::timeout);
    ticking.start(20ms);
    QCOMPARE(stage().query(), u"1.2.3"_s);
    QVERIFY2(ticks.size() >= 5, qPrintable(QString::number(ticks.size())));
}

// Several panels may ask a silent server at a time. Qt sends it six requests at most, so that behind those no
// event comes that would wake the loop.
void NetworkingTest::deliversWhatWasPostedBeforeItWaited()
{
    constexpr int kMoreThanAreSent = 12;
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::silence());
    QElapsedTimer time;
    std::chrono::milliseconds delivered = 1h;
    for (int i = 0; i < kMoreThanAreSent; ++i)
        QMetaObject::invokeMethod(
            this, [this] { stage().query(); }, Qt::QueuedConnection);
    QMetaObject::invokeMethod(
        this, [&] { delivered = std::chrono::milliseconds(time.elapsed()); }, Qt::QueuedConnection);
    time.start();
    QTRY_COMPARE(stage().log.count(u"request protobufHttp handle errors here"_s), kMoreThanAreSent);
    QVERIFY2(delivered < 1s, qPrintable(QString::number(delivered.count())));
}

void NetworkingTest::mayBeAskedAgainWhileItWaits_data()
{
    QTest::addColumn<std::chrono::milliseconds>("outerDelay");
    QTest::addColumn<std::chrono::milliseconds>("innerDelay");
    QTest::newRow("the later query is answered first") << 600ms << 0ms;
    QTest::newRow("the earlier query is answered first") << 200ms << 700ms;
}

void NetworkingTest::mayBeAskedAgainWhileItWaits()
{
    QFETCH(std::chrono::milliseconds, outerDelay);
    QFETCH(std::chrono::milliseconds, innerDelay);
    auto outer = ScriptedHttpServer::version("1.1.1");
    outer.delay = outerDelay;
    auto inner = ScriptedHttpServer::version("2.2.2");
    inner.delay = innerDelay;
    stage().server.answer(stage().kVersionPath, outer);
    stage().server.answer(u"/inner"_s, inner);
    QString innerVersion;
    QTimer::singleShot(50ms, this, [this, &innerVersion] { innerVersion = stage().query(u"/inner"_s); });
    QCOMPARE(stage().query(), u"1.1.1"_s);
    QCOMPARE(innerVersion, u"2.2.2"_s);
}

void NetworkingTest::releasesItsReplies()
{
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::version("1.2.3"));
    stage().server.answer(stage().kImagePath, ScriptedHttpServer::page("image"_ba));
    for (int i = 0; i < 5; ++i) {
        stage().query();
        stage().query(u"/missing"_s);
    }
    stage().download(stage().image());
    QTRY_COMPARE(stage().ended.size(), 1);
    stage().download(stage().image(), u"/missing"_s);
    QTRY_COMPARE(stage().ended.size(), 2);
    QTRY_COMPARE(stage().repliesKept(), 0);
}

QUILLON_TEST_CORE(NetworkingTest)
#include "tst_networking.moc"
