// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// nginx with this tree's configuration, asked what the panel asks, by the panel's own client where that
// matters.
#include "device/ModelTable.h"
#include "net/networking_class.h"
#include "server/publish/Project.h"
#include "tests/server/NginxSite.h"
#include "tests/support/TestProgram.h"

#include <QFileInfo>
#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString kVersionPath = u"/upinfo_test.aspx?proj_name=R2MCU"_s;
const QString kImagePath = u"/dnfile_test.aspx?f_sn=155"_s;

} // namespace

class ServerAnswersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void thePanelsClientReadsIt();
    void theNextRequestSeesAPublication();
    void theNextRequestSeesARollback();
    void whatIsNotThereIsAnEmptyPage_data();
    void whatIsNotThereIsAnEmptyPage();
    void onlyReadingIsAllowed_data();
    void onlyReadingIsAllowed();
    void aKeptImageIsAskedAboutEachTime();
    void aKeptVersionIsGoodForAMinute();
    void largeImagesArriveWhole();
    void everyFirmwareOfThePanelIsAnswered(); // the last one: the others know of one that is not there

private:
    std::unique_ptr<NginxSite> m_site;
};

void ServerAnswersTest::initTestCase()
{
    if (!NginxSite::isInstalled())
        QSKIP("there is no nginx here");
    m_site = std::make_unique<NginxSite>();
    QVERIFY(m_site->isUp());
}

void ServerAnswersTest::cleanupTestCase()
{
    m_site.reset();
}

void ServerAnswersTest::everyFirmwareOfThePanelIsAnswered()
{
    int number = 0;
    const auto check
        = [&](const QString &model, const QString &chip, const QuillonFirmwareUpgrade::ChipRow &row) {
              const QString version = u"1.2.%1"_s.arg(++number);
              const ProgramRun run
                  = SiteFolder::run(m_site->adding(version, {u"--model="_s + model, u"--chip="_s + chip}));
              QVERIFY2(run.status == 0, qPrintable(run.errors));
              const WebAnswer told = m_site->ask(row.versionPath);
              QCOMPARE(told.status, 200);
              QCOMPARE(told.head.value("content-type"), QByteArray("application/json; charset=utf-8"));
              QVERIFY(told.body.contains(QByteArray("\"f_ver\":\"" + version.toLatin1() + '"')));
              const WebAnswer image = m_site->ask(row.imagePath);
              QCOMPARE(image.status, 200);
              QCOMPARE(image.head.value("content-type"), QByteArray("application/octet-stream"));
              QCOMPARE(image.body, SiteFolder::imageOf(version));
          };
    for (const auto &row : QuillonFirmwareUpgrade::modelRows()) {
        check(row.code, u"pc"_s, row.pc);
        check(row.code, u"otg"_s, row.otg);
    }
    QCOMPARE(number, publish::projects().size());
}

// Its server's address is fixed, so it asks through a proxy, as in the simulation.
void ServerAnswersTest::thePanelsClientReadsIt()
{
    QCOMPARE(SiteFolder::run(m_site->adding(u"1.2.0"_s, {u"--force"_s})).status, 0);
    const QStringList place = m_site->address().split(u':');
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, place.first(), place.last().toUShort()});
    networking_class *client = networking_class::getInstance();
    QCOMPARE(client->getVersion(u"http://update.quillon.example"_s + kVersionPath), u"1.2.0"_s);
    QCOMPARE(client->f_remark, u"更好。"_s);
    QCOMPARE(client->f_remark_en, u"Better."_s);
    QCOMPARE(client->getVersion(u"http://update.quillon.example/upinfo_test.aspx?proj_name=R1MCU"_s),
             networking_class::failedQuery());
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

void ServerAnswersTest::theNextRequestSeesAPublication()
{
    for (const QString &version : {u"1.1.1"_s, u"1.2.0"_s}) {
        QCOMPARE(SiteFolder::run(m_site->adding(version, {u"--force"_s})).status, 0);
        QVERIFY(m_site->ask(kVersionPath).body.contains(version.toLatin1()));
        QCOMPARE(m_site->ask(kImagePath).body, SiteFolder::imageOf(version));
    }
}

void ServerAnswersTest::theNextRequestSeesARollback()
{
    for (const QString &version : {u"1.1.1"_s, u"1.2.0"_s})
        QCOMPARE(SiteFolder::run(m_site->adding(version, {u"--force"_s})).status, 0);
    QCOMPARE(SiteFolder::run(m_site->rollingBack()).status, 0);
    QVERIFY(m_site->ask(kVersionPath).body.contains("1.1.1"));
    QCOMPARE(m_site->ask(kImagePath).body, SiteFolder::imageOf(u"1.1.1"_s));
}

// A panel keeps whatever it is sent for an image, and starts the flashing tool unless it is empty.
void ServerAnswersTest::whatIsNotThereIsAnEmptyPage_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"/", "/upinfo_test.aspx", "/dnfile_test.aspx",
                             "/upinfo_test.aspx?proj_name=R1MCU", "/dnfile_test.aspx?f_sn=153",
                             "/upinfo_test.aspx?proj_name=", "/upinfo_test.aspx?proj_name=../R2MCU",
                             "/upinfo_test.aspx?proj_name=R2MCU/", "/dnfile_test.aspx?f_sn=155x",
                             "/dnfile_test.aspx?f_sn=0155", "/R2MCU/", "/R2MCU/firmware.bin",
                             "/R2MCU/about.json", "/nothing", "/lock", "/upinfo_test.aspx/?proj_name=R2MCU"})
        QTest::newRow(path) << QString::fromLatin1(path);
}

void ServerAnswersTest::whatIsNotThereIsAnEmptyPage()
{
    QCOMPARE(SiteFolder::run(m_site->adding(u"1.2.0"_s, {u"--force"_s})).status, 0);
    QFETCH(QString, path);
    const WebAnswer answer = m_site->ask(path);
    QCOMPARE(answer.status, 404);
    QCOMPARE(answer.body, QByteArray());
    QCOMPARE(answer.head.value("cache-control"), QByteArray("no-store"));
    QCOMPARE(answer.head.value("server"), QByteArray("nginx"));
}

void ServerAnswersTest::onlyReadingIsAllowed_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("GET") << 200;
    QTest::newRow("HEAD") << 200;
    for (const char *method : {"POST", "PUT", "DELETE", "OPTIONS", "PROPFIND", "TRACE"})
        QTest::newRow(method) << 405;
}

void ServerAnswersTest::onlyReadingIsAllowed()
{
    QCOMPARE(SiteFolder::run(m_site->adding(u"1.2.0"_s, {u"--force"_s})).status, 0);
    for (const QString &path : {kVersionPath, kImagePath})
        QTEST(m_site->ask(path, QTest::currentDataTag()).status, "status");
    QCOMPARE(m_site->servedVersion(), u"1.2.0"_s);
}

// Its address does not tell the version.
void ServerAnswersTest::aKeptImageIsAskedAboutEachTime()
{
    QCOMPARE(SiteFolder::run(m_site->adding(u"1.2.0"_s, {u"--force"_s})).status, 0);
    const WebAnswer first = m_site->ask(kImagePath);
    QCOMPARE(first.head.value("cache-control"), QByteArray("public, no-cache"));
    const QByteArray tag = first.head.value("etag");
    QVERIFY(!tag.isEmpty());
    QCOMPARE(m_site->ask(kImagePath, "GET", tag).status, 304);
    QCOMPARE(SiteFolder::run(m_site->adding(u"1.10.0"_s, {u"--force"_s})).status, 0);
    const WebAnswer second = m_site->ask(kImagePath, "GET", tag);
    QCOMPARE(second.status, 200);
    QCOMPARE(second.body, SiteFolder::imageOf(u"1.10.0"_s));
}

void ServerAnswersTest::aKeptVersionIsGoodForAMinute()
{
    QCOMPARE(SiteFolder::run(m_site->adding(u"1.2.0"_s, {u"--force"_s})).status, 0);
    QCOMPARE(m_site->ask(kVersionPath).head.value("cache-control"), QByteArray("public, max-age=60"));
}

// Several, for what can go wrong here is a matter of moments.
void ServerAnswersTest::largeImagesArriveWhole()
{
    constexpr int kRounds = 6;
    constexpr qint64 kSize = qint64(64) * 1024 * 1024;
    const QStringList arguments = m_site->adding(u"1.2.0"_s, {u"--force"_s});
    QVERIFY(QFile::resize(arguments.at(arguments.size() - 2), kSize));
    QCOMPARE(SiteFolder::run(arguments).status, 0);
    networking_class *client = networking_class::getInstance();
    const QTemporaryDir folder;
    for (int round = 0; round < kRounds; ++round) {
        QSignalSpy ended(client, &networking_class::network_finish_download);
        client->downloadFile(QUrl(u"http://"_s + m_site->address() + kImagePath),
                             folder.filePath(u"image"_s));
        QVERIFY2(ended.wait(15000),
                 qPrintable(QString::number(QFileInfo(folder.filePath(u"image"_s)).size())));
        QCOMPARE(QFileInfo(folder.filePath(u"image"_s)).size(), kSize);
    }
}

QUILLON_TEST_CORE(ServerAnswersTest)
#include "tst_server_answers.moc"
