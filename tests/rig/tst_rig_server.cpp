// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FirmwareImage.h"
#include "rig/UpdateServer.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

using namespace rig;

namespace {

constexpr int kPatience = 60000; // of the sped-up clock
constexpr char kPcQuery[] = "/upinfo_test.aspx?proj_name=R2MCU";
constexpr char kPcDownload[] = "/dnfile_test.aspx?f_sn=155";

struct Got {
    QNetworkReply::NetworkError error;
    int status;
    QByteArray body;
    qint64 milliseconds;
};

/// The server is the application's proxy. A later Qt says of a refused connection that it was the proxy's.
QNetworkReply::NetworkError errorOf(const QNetworkReply &reply)
{
    const QNetworkReply::NetworkError error = reply.error();
    return error == QNetworkReply::ProxyConnectionRefusedError ? QNetworkReply::ConnectionRefusedError
                                                               : error;
}

QJsonObject entryIn(const QByteArray &body)
{
    return QJsonDocument::fromJson(body).array().at(0).toObject();
}

} // namespace

class RigServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aVersionQueryIsAnswered_data();
    void aVersionQueryIsAnswered();
    void aDownloadGivesTheImage_data();
    void aDownloadGivesTheImage();
    void whatIsNotOfferedIsNotFound_data();
    void whatIsNotOfferedIsNotFound();
    void theServerStandsInForAnyHost();
    void faultsSpoilTheAnswer_data();
    void faultsSpoilTheAnswer();
    void aFaultForOneKindOfRequestSparesTheOther_data();
    void aFaultForOneKindOfRequestSparesTheOther();
    void aSpentFaultLeavesTheServerSound();
    void refusedConnectionsAreAcceptedAgainAtTheSamePort();
    void silenceLastsUntilTheClientGivesUp();
    void aDrippingAnswerArrivesWhole();
    void slowAnswersTakeTheirTime_data();
    void slowAnswersTakeTheirTime();
    void aRedirectLeadsBackToItself();
    void everyRequestIsOnRecord();
    void aRequestIsAnnouncedBeforeItIsAnswered();
    void nonsenseIsHungUpOn_data();
    void nonsenseIsHungUpOn();
    void goingDownWithARequestOpenIsSafe_data();
    void goingDownWithARequestOpenIsSafe();

private:
    Got get(const QString &target);

    Journal m_journal;
    FaultBoard m_faults;
    RigThread m_thread;
    std::unique_ptr<UpdateServer> m_server;
};

void RigServerTest::init()
{
    m_server = std::make_unique<UpdateServer>(m_thread, m_faults, m_journal);
    QVERIFY(m_server->start());
    m_server->becomeApplicationProxy();
}

void RigServerTest::cleanup()
{
    m_faults.clearAll();
    m_server.reset();
    QCOMPARE(QNetworkProxy::applicationProxy().type(), QNetworkProxy::NoProxy);
}

Got RigServerTest::get(const QString &target)
{
    QNetworkAccessManager manager;
    QElapsedTimer time;
    time.start();
    QNetworkReply *reply
        = manager.get(QNetworkRequest(QUrl(QStringLiteral("http://update.example") + target)));
    QSignalSpy finished(reply, &QNetworkReply::finished);
    if (!finished.wait(kPatience))
        return {QNetworkReply::TimeoutError, 0, {}, time.elapsed()};
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return {errorOf(*reply), status, reply->readAll(), time.elapsed()};
}

void RigServerTest::aVersionQueryIsAnswered_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("version");
    QTest::newRow("R1 PC") << QStringLiteral("/upinfo_test.aspx?proj_name=R1MCU") << QStringLiteral("1.2.3");
    QTest::newRow("R2 PC") << QStringLiteral("/upinfo_test.aspx?proj_name=R2MCU") << QStringLiteral("1.2.4");
    QTest::newRow("R1 OTG") << QStringLiteral("/upinfo_test.aspx?proj_name=R1OTG") << QStringLiteral("1.2.5");
    QTest::newRow("R2 OTG") << QStringLiteral("/upinfo_test.aspx?proj_name=R2OTG")
                            << QStringLiteral("10.0.65535");
}

void RigServerTest::aVersionQueryIsAnswered()
{
    m_server->setVersion(Model::R1, Chip::Pc, QVersionNumber(1, 2, 3));
    m_server->setVersion(Model::R2, Chip::Pc, QVersionNumber(1, 2, 4));
    m_server->setVersion(Model::R1, Chip::Otg, QVersionNumber(1, 2, 5));
    m_server->setVersion(Model::R2, Chip::Otg, QVersionNumber(10, 0, 65535));
    QFETCH(QString, target);
    const Got got = get(target);
    QCOMPARE(got.error, QNetworkReply::NoError);
    QCOMPARE(got.status, 200);
    QCOMPARE(QJsonDocument::fromJson(got.body).array().size(), 1);
    const QJsonObject entry = entryIn(got.body);
    QTEST(entry.value(QStringLiteral("f_ver")).toString(), "version");
    QVERIFY(entry.value(QStringLiteral("f_remark_en")).toString().count(u'\n') >= 3);
    const QString chinese = entry.value(QStringLiteral("f_remark")).toString();
    QVERIFY(chinese.count(u'\n') >= 3);
    QVERIFY(
        std::any_of(chinese.begin(), chinese.end(), [](QChar c) { return c.script() == QChar::Script_Han; }));
}

void RigServerTest::aDownloadGivesTheImage_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<Model>("model");
    QTest::addColumn<Chip>("chip");
    QTest::newRow("R1 PC") << 153 << Model::R1 << Chip::Pc;
    QTest::newRow("R1 OTG") << 154 << Model::R1 << Chip::Otg;
    QTest::newRow("R2 PC") << 155 << Model::R2 << Chip::Pc;
    QTest::newRow("R2 OTG") << 156 << Model::R2 << Chip::Otg;
}

void RigServerTest::aDownloadGivesTheImage()
{
    QFETCH(int, number);
    QFETCH(Model, model);
    QFETCH(Chip, chip);
    m_server->setVersion(Chip::Pc, QVersionNumber(1, 7, 0));
    m_server->setVersion(Chip::Otg, QVersionNumber(1, 8, 0));
    const Got got = get(QStringLiteral("/dnfile_test.aspx?f_sn=%1").arg(number));
    QCOMPARE(got.error, QNetworkReply::NoError);
    const auto info = readImage(got.body);
    QVERIFY(info);
    QCOMPARE(info->model, model);
    QCOMPARE(info->chip, chip);
    QCOMPARE(info->version, QVersionNumber(1, chip == Chip::Pc ? 7 : 8, 0));
    QCOMPARE(got.body, m_server->image(model, chip));
}

void RigServerTest::whatIsNotOfferedIsNotFound_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("the root") << QStringLiteral("/");
    QTest::newRow("an unknown project") << QStringLiteral("/upinfo_test.aspx?proj_name=R3MCU");
    QTest::newRow("a project in lower case") << QStringLiteral("/upinfo_test.aspx?proj_name=r2mcu");
    QTest::newRow("no project") << QStringLiteral("/upinfo_test.aspx");
    QTest::newRow("an unknown image") << QStringLiteral("/dnfile_test.aspx?f_sn=157");
    QTest::newRow("an image from the version page") << QStringLiteral("/upinfo_test.aspx?f_sn=155");
}

void RigServerTest::whatIsNotOfferedIsNotFound()
{
    QFETCH(QString, target);
    QCOMPARE(get(target).status, 404);
    QVERIFY(m_server->requests().isEmpty());
}

void RigServerTest::theServerStandsInForAnyHost()
{
    QVERIFY(get(QString::fromLatin1(kPcQuery)).error == QNetworkReply::NoError);
    QCOMPARE(m_server->requests().first().target,
             QStringLiteral("http://update.example") + QLatin1String(kPcQuery));
}

void RigServerTest::faultsSpoilTheAnswer_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QNetworkReply::NetworkError>("error");
    QTest::addColumn<int>("status");
    QTest::addColumn<std::function<bool(const QByteArray &)>>("check");
    const auto query = QString::fromLatin1(kPcQuery);
    const auto download = QString::fromLatin1(kPcDownload);
    const auto fine = QNetworkReply::NoError;
    using Check = std::function<bool(const QByteArray &)>;
    const Check empty = [](const QByteArray &body) { return body.isEmpty(); };
    const Check page = [](const QByteArray &body) { return body.startsWith("<html>"); };
    const Check unread = [](const QByteArray &body) { return !body.isEmpty() && !readImage(body); };
    const auto is
        = [](const char *text) { return Check([text](const QByteArray &body) { return body == text; }); };
    const Check half
        = [](const QByteArray &body) { return body.size() == (64 + usualBodySize(Chip::Pc)) / 2; };

    QTest::newRow("refused") << Fault::ServerRefused << query << QNetworkReply::ConnectionRefusedError << 0
                             << empty;
    QTest::newRow("dropped") << Fault::ServerDropped << query << QNetworkReply::RemoteHostClosedError << 0
                             << empty;
    QTest::newRow("garbage") << Fault::ServerGarbage << query << QNetworkReply::RemoteHostClosedError << 0
                             << Check();
    QTest::newRow("404") << Fault::ServerNotFound << query << QNetworkReply::ContentNotFoundError << 404
                         << page;
    QTest::newRow("404 in place of an image")
        << Fault::ServerNotFound << download << QNetworkReply::ContentNotFoundError << 404 << page;
    QTest::newRow("500") << Fault::ServerBroken << query << QNetworkReply::InternalServerError << 500 << page;
    QTest::newRow("cut short") << Fault::ServerCutShort << download << QNetworkReply::RemoteHostClosedError
                               << 200 << half;
    QTest::newRow("empty body") << Fault::ServerEmptyBody << query << fine << 200 << empty;
    QTest::newRow("empty image") << Fault::ServerEmptyBody << download << fine << 200 << empty;
    QTest::newRow("malformed") << Fault::ServerMalformedJson << query << fine << 200
                               << Check([](const QByteArray &b) {
                                      return b.startsWith("[{") && QJsonDocument::fromJson(b).isNull();
                                  });
    QTest::newRow("empty list") << Fault::ServerEmptyList << query << fine << 200 << is("[]");
    QTest::newRow("object") << Fault::ServerObject << query << fine << 200 << Check([](const QByteArray &b) {
        return QJsonDocument::fromJson(b).isObject();
    });
    QTest::newRow("no version") << Fault::ServerNoVersion << query << fine << 200
                                << Check([](const QByteArray &b) {
                                       return !entryIn(b).isEmpty()
                                           && !entryIn(b).contains(QStringLiteral("f_ver"));
                                   });
    QTest::newRow("no object") << Fault::ServerNoObject << query << fine << 200 << is("[42]");
    QTest::newRow("huge notes") << Fault::ServerHugeNotes << query << fine << 200
                                << Check([](const QByteArray &b) {
                                       return entryIn(b).value(QStringLiteral("f_remark")).toString().size()
                                           == 1000000;
                                   });
    QTest::newRow("damaged image") << Fault::ServerDamagedImage << download << fine << 200 << unread;
    QTest::newRow("foreign image") << Fault::ServerForeignImage << download << fine << 200
                                   << Check([](const QByteArray &b) {
                                          const auto info = readImage(b);
                                          return info && info->chip == Chip::Otg;
                                      });
    QTest::newRow("huge image") << Fault::ServerHugeImage << download << fine << 200
                                << Check([](const QByteArray &b) { return b.size() > 512 * kKiB; });
}

void RigServerTest::faultsSpoilTheAnswer()
{
    QFETCH(Fault, fault);
    QFETCH(QString, target);
    m_faults.arm(fault);
    m_thread.runAndWait([] {}); // the server has heard of it
    const Got got = get(target);
    QTEST(got.error, "error");
    QTEST(got.status, "status");
    QFETCH(std::function<bool(const QByteArray &)>, check);
    QVERIFY2(!check || check(got.body), got.body.left(200).constData());
}

void RigServerTest::aFaultForOneKindOfRequestSparesTheOther_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("spared");
    for (const Fault fault : {Fault::ServerMalformedJson, Fault::ServerEmptyList, Fault::ServerObject,
                              Fault::ServerNoVersion, Fault::ServerNoObject, Fault::ServerHugeNotes})
        QTest::newRow(infoOf(fault).name) << fault << QString::fromLatin1(kPcDownload);
    for (const Fault fault : {Fault::ServerDamagedImage, Fault::ServerForeignImage, Fault::ServerHugeImage})
        QTest::newRow(infoOf(fault).name) << fault << QString::fromLatin1(kPcQuery);
}

void RigServerTest::aFaultForOneKindOfRequestSparesTheOther()
{
    QFETCH(QString, spared);
    QFETCH(Fault, fault);
    const Got sound = get(spared);
    m_faults.arm(fault, {{}, {}, 1});
    QCOMPARE(get(spared).body, sound.body);
    QVERIFY(m_faults.isArmed(fault));
}

void RigServerTest::aSpentFaultLeavesTheServerSound()
{
    m_faults.arm(Fault::ServerNotFound, {Chip::Pc, RequestKind::VersionQuery, 1});
    QCOMPARE(get(QStringLiteral("/upinfo_test.aspx?proj_name=R2OTG")).status, 200);
    QCOMPARE(get(QString::fromLatin1(kPcDownload)).status, 200);
    QCOMPARE(get(QString::fromLatin1(kPcQuery)).status, 404);
    QCOMPARE(get(QString::fromLatin1(kPcQuery)).status, 200);
}

void RigServerTest::refusedConnectionsAreAcceptedAgainAtTheSamePort()
{
    const quint16 port = m_server->port();
    m_faults.arm(Fault::ServerRefused);
    m_thread.runAndWait([] {});
    QCOMPARE(get(QString::fromLatin1(kPcQuery)).error, QNetworkReply::ConnectionRefusedError);
    m_faults.clear(Fault::ServerRefused);
    m_thread.runAndWait([] {});
    QCOMPARE(m_server->port(), port);
    QCOMPARE(get(QString::fromLatin1(kPcQuery)).error, QNetworkReply::NoError);
}

void RigServerTest::silenceLastsUntilTheClientGivesUp()
{
    m_faults.arm(Fault::ServerSilent);
    QNetworkAccessManager manager;
    QNetworkReply *reply = manager.get(
        QNetworkRequest(QUrl(QStringLiteral("http://update.example") + QLatin1String(kPcQuery))));
    QSignalSpy finished(reply, &QNetworkReply::finished);
    QVERIFY(!finished.wait(20000));
    QCOMPARE(m_server->requests().size(), 1);
    QVERIFY(m_server->requests().first().answered.count() < 0);
    QVERIFY(m_server->requests().first().sha256.isEmpty());
    reply->abort();
    QTRY_COMPARE(finished.size(), 1);
}

void RigServerTest::aDrippingAnswerArrivesWhole()
{
    m_faults.arm(Fault::ServerDripping);
    const Got got = get(QString::fromLatin1(kPcDownload));
    QCOMPARE(got.body, m_server->image(Model::R2, Chip::Pc));
    QVERIFY2(got.milliseconds >= 3500, qPrintable(QString::number(got.milliseconds)));
}

void RigServerTest::slowAnswersTakeTheirTime_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<qint64>("atLeast");
    QTest::newRow("slow") << Fault::ServerSlow << qint64(1500);
    QTest::newRow("late") << Fault::ServerLate << qint64(5000);
}

void RigServerTest::slowAnswersTakeTheirTime()
{
    QFETCH(Fault, fault);
    QFETCH(qint64, atLeast);
    m_faults.arm(fault);
    const Got got = get(QString::fromLatin1(kPcQuery));
    QCOMPARE(got.error, QNetworkReply::NoError);
    QVERIFY2(got.milliseconds >= atLeast, qPrintable(QString::number(got.milliseconds)));
}

void RigServerTest::aRedirectLeadsBackToItself()
{
    m_faults.arm(Fault::ServerRedirects);
    QCOMPARE(get(QString::fromLatin1(kPcQuery)).error, QNetworkReply::TooManyRedirectsError);
    QVERIFY(m_server->requests().size() > 10);
}

void RigServerTest::everyRequestIsOnRecord()
{
    get(QString::fromLatin1(kPcQuery));
    const Got image = get(QStringLiteral("/dnfile_test.aspx?f_sn=154"));
    const QList<ServedRequest> requests = m_server->requests();
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.at(0).kind, RequestKind::VersionQuery);
    QCOMPARE(requests.at(1).kind, RequestKind::Download);
    QCOMPARE(requests.at(1).model, Model::R1);
    QCOMPARE(requests.at(1).chip, Chip::Otg);
    QCOMPARE(requests.at(1).sha256, sha256(image.body));
    QVERIFY(requests.at(0).answered >= requests.at(0).at);
    QVERIFY(requests.at(1).at >= requests.at(0).at);
    QTRY_VERIFY(m_server->requests().at(1).answered >= requests.at(1).at);
    m_server->forgetRequests();
    QVERIFY(m_server->requests().isEmpty());
}

void RigServerTest::aRequestIsAnnouncedBeforeItIsAnswered()
{
    QList<ServedRequest> arrived;
    connect(m_server.get(), &UpdateServer::requestArrived, this,
            [&arrived](const ServedRequest &request) { arrived.append(request); });
    m_faults.arm(Fault::ServerSilent);
    QNetworkAccessManager manager;
    manager.get(QNetworkRequest(QUrl(QStringLiteral("http://update.example") + QLatin1String(kPcQuery))));
    QTRY_COMPARE_WITH_TIMEOUT(arrived.size(), 1, kPatience);
    QCOMPARE(arrived.first().chip, Chip::Pc);
    QVERIFY(arrived.first().answered.count() < 0);
}

void RigServerTest::nonsenseIsHungUpOn_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("no HTTP") << QByteArray("hello there\r\n\r\n");
    QTest::newRow("a relative target") << QByteArray("GET upinfo_test.aspx HTTP/1.1\r\n\r\n");
    QTest::newRow("a head without an end") << QByteArray(70 * kKiB, 'x');
    QTest::newRow("bytes") << QByteArray::fromHex("00ff00ff0d0a0d0a");
    QTest::newRow("half a head") << QByteArray("GET /upinfo_test.aspx HTTP/1.1\r\n");
    QTest::newRow("nothing") << QByteArray();
}

void RigServerTest::nonsenseIsHungUpOn()
{
    QFETCH(QByteArray, sent);
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), m_server->port());
    QSignalSpy disconnected(&socket, &QTcpSocket::disconnected);
    socket.write(sent);
    QTRY_COMPARE_WITH_TIMEOUT(disconnected.size(), 1, kPatience);
    QVERIFY(socket.readAll().isEmpty());
    QCOMPARE(get(QString::fromLatin1(kPcQuery)).status, 200);
}

void RigServerTest::goingDownWithARequestOpenIsSafe_data()
{
    QTest::addColumn<Fault>("fault");
    for (const Fault fault : {Fault::ServerSilent, Fault::ServerLate, Fault::ServerDripping})
        QTest::newRow(infoOf(fault).name) << fault;
}

void RigServerTest::goingDownWithARequestOpenIsSafe()
{
    QFETCH(Fault, fault);
    m_faults.arm(fault);
    QNetworkAccessManager manager;
    QNetworkReply *reply = manager.get(
        QNetworkRequest(QUrl(QStringLiteral("http://update.example") + QLatin1String(kPcDownload))));
    QSignalSpy finished(reply, &QNetworkReply::finished);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requests().size(), 1, kPatience);
    m_server.reset();
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, kPatience);
}

QUILLON_TEST_CORE(RigServerTest)
#include "tst_rig_server.moc"
