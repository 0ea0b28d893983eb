// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/net/ClientInside.h"
#include "tests/panel/ReadyToUpgrade.h"
#include "tests/support/TestProgram.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Server = ScriptedHttpServer;

const QString kEntered = QStringLiteral("========####enter onFirmwareDownloaded");
const QString kWaiting = QStringLiteral("waitting for all firmware download well.");
const QString kAllDownloaded = QStringLiteral("all firmware has downlaod well, start upgrade...");

Server::Answer held(const QByteArray &body)
{
    Server::Answer answer = Server::page(body);
    answer.holdAfter = 0;
    return answer;
}

} // namespace

class DownloadsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choosesNamesAndAddresses_data();
    void choosesNamesAndAddresses();
    void aVersionNamesNoOtherFolder_data();
    void aVersionNamesNoOtherFolder();
    void downloadsBothImagesOneAfterTheOther_data();
    void downloadsBothImagesOneAfterTheOther();
    void deletesStaleImagesFirst();
    void waitsWhenThePcImageIsMissing_data();
    void waitsWhenThePcImageIsMissing();
    void waitsWhenTheOtgImageIsEmpty();
    void takesAnErrorPageForAnImage();
    void waitsWhenTheFolderCannotBeMade();
    void countsWhatIsOnDisk_data();
    void countsWhatIsOnDisk();
    void hearsOfEachDownloadOnce();
    void stopsListeningWhenBothAreThere();
    void survivesItsEnd_data();
    void survivesItsEnd();
};

void DownloadsTest::choosesNamesAndAddresses_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("addresses");
    const QStringList r2Files{u"/R2_PC1.2.3.bin"_s, u"/R2_OTG1.0.4.bin"_s};
    const QStringList r2Addresses{ServerPaths::kR2PcImage, ServerPaths::kR2OtgImage};
    QTest::newRow("R1") << DeviceModel::R1 << QStringList{u"/R1_PC1.2.3.bin"_s, u"/R1_OTG1.0.4.bin"_s}
                        << QStringList{ServerPaths::kR1PcImage, ServerPaths::kR1OtgImage};
    QTest::newRow("R2") << DeviceModel::R2 << r2Files << r2Addresses;
    QTest::newRow("any other model") << DeviceModel(3) << r2Files << r2Addresses;
}

void DownloadsTest::choosesNamesAndAddresses()
{
    QFETCH(DeviceModel, model);
    QFETCH(QStringList, files);
    QFETCH(QStringList, addresses);
    ReadyToUpgrade stage(model);
    const OpenPanel &panel = *stage.panel;
    stage.server.answer(addresses.first(), Server::silence());
    QVERIFY(!QDir(stage.sandbox.downloadFolder()).exists());
    stage.click();
    QVERIFY(QDir(stage.sandbox.downloadFolder()).exists());
    const QString folder = qEnvironmentVariable("ALLUSERSPROFILE") + u"/Orvik/Orvik Link/orvikExe"_s;
    QCOMPARE(panel.imagePath(Chip::Pc), folder + files.first());
    QCOMPARE(panel.imagePath(Chip::Otg), folder + files.last());
    const QString host = QLatin1String(QUILLON_UPDATE_SERVER);
    QCOMPARE(panel.imageAddress(Chip::Pc), host + addresses.first());
    QCOMPARE(panel.imageAddress(Chip::Otg), host + addresses.last());
}

void DownloadsTest::aVersionNamesNoOtherFolder_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("file");
    QTest::newRow("a plain one") << u"1.2.3"_s << u"R2_PC1.2.3.bin"_s;
    QTest::newRow("words") << u"1.2.3 测试-β_2"_s << u"R2_PC1.2.3 测试-β_2.bin"_s;
    QTest::newRow("up and down again") << u"/../../victim"_s << u"R2_PC_.._.._victim.bin"_s;
    QTest::newRow("the same on Windows") << u"\\..\\..\\victim"_s << u"R2_PC_.._.._victim.bin"_s;
    QTest::newRow("a stream of Windows") << u"1:2"_s << u"R2_PC1_2.bin"_s;
    QTest::newRow("no name") << u"*?\"<>|\n"_s << u"R2_PC_______.bin"_s;
    QTest::newRow("an end of the name") << u"1"_s + QChar(0) + u"2"_s << u"R2_PC1_2.bin"_s;
}

void DownloadsTest::aVersionNamesNoOtherFolder()
{
    QFETCH(QString, version);
    QFETCH(QString, file);
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    stage.panel->pretendServerVersion(Chip::Pc, version);
    // A folder through which a name that is taken as it is would lead out of the one for images.
    const QDir folder(stage.sandbox.downloadFolder());
    QVERIFY(folder.mkpath(u"R2_PC"_s));
    const QString victim = folder.filePath(u"../victim.bin"_s);
    writeFile(victim, "somebody's");
    stage.click();
    QCOMPARE(QFileInfo(stage.panel->imagePath(Chip::Pc)).fileName(), file);
    QCOMPARE(QDir(stage.sandbox.downloadFolder()).entryList(QDir::Files), QStringList{file});
    QCOMPARE(contentOf(victim), "somebody's"_ba);
}

void DownloadsTest::downloadsBothImagesOneAfterTheOther_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("model name");
    QTest::newRow("R1") << DeviceModel::R1 << UpgradePlan::None << u"R1"_s;
    QTest::newRow("R2") << DeviceModel::R2 << UpgradePlan::None << u"R2"_s;
    QTest::newRow("R2, PC only") << DeviceModel::R2 << UpgradePlan::PcOnly << u"R2"_s;
    QTest::newRow("R2, OTG only") << DeviceModel::R2 << UpgradePlan::OtgOnly << u"R2"_s;
    QTest::newRow("R2, both") << DeviceModel::R2 << UpgradePlan::Both << u"R2"_s;
}

void DownloadsTest::downloadsBothImagesOneAfterTheOther()
{
    QFETCH(DeviceModel, model);
    QFETCH(UpgradePlan, plan);
    const bool r1 = model == DeviceModel::R1;
    const QString pcPath = r1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage;
    const QString otgPath = r1 ? ServerPaths::kR1OtgImage : ServerPaths::kR2OtgImage;
    ReadyToUpgrade stage(model);
    const OpenPanel &panel = *stage.panel;
    stage.panel->pretendPlan(plan);
    stage.server.answer(pcPath, held(kPcImage));
    stage.click();
    QTRY_COMPARE(stage.server.paths(), QStringList{pcPath});
    stage.server.release(pcPath);
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
    QCOMPARE(stage.server.paths(), (QStringList{pcPath, otgPath}));
    QCOMPARE(contentOf(panel.imagePath(Chip::Pc)), QByteArray(kPcImage));
    QCOMPARE(contentOf(panel.imagePath(Chip::Otg)), QByteArray(kOtgImage));
    QVERIFY(panel.hasImage(Chip::Pc) && panel.hasImage(Chip::Otg));

    const QStringList expected{kEntered,
                               u"PC firmware download well, this path is:  "_s + panel.imagePath(Chip::Pc),
                               u"Starting OTG firmware download..."_s,
                               kEntered,
                               u"OTG firmware download well, this path is:  "_s + panel.imagePath(Chip::Otg),
                               kAllDownloaded};
    QStringList lines;
    for (const QString &line : stage.log.lines()) {
        if (expected.contains(line))
            lines.append(line);
    }
    QCOMPARE(lines, expected);
}

void DownloadsTest::deletesStaleImagesFirst()
{
    ReadyToUpgrade stage;
    const QString pc = stage.image(u"R2_PC1.2.3.bin"_s);
    const QString otg = stage.image(u"R2_OTG1.0.4.bin"_s);
    const QString other = stage.image(u"R2_OTG1.0.3.bin"_s);
    for (const QString &path : {pc, otg, other})
        writeFile(path, "stale");
    stage.server.answer(ServerPaths::kR2PcImage, Server::silence());
    stage.click();
    QCOMPARE(contentOf(pc), QByteArray());
    QVERIFY(!QFile::exists(otg));
    QVERIFY(QFile::exists(other));
}

void DownloadsTest::waitsWhenThePcImageIsMissing_data()
{
    QTest::addColumn<Server::Answer>("answer");
    QTest::newRow("an empty image") << Server::page("");
    QTest::newRow("a connection that breaks") << Server::hangUp();
}

void DownloadsTest::waitsWhenThePcImageIsMissing()
{
    QFETCH(Server::Answer, answer);
    ReadyToUpgrade stage;
    stage.panel->pretendPlan(UpgradePlan::Both);
    stage.server.answer(ServerPaths::kR2PcImage, answer);
    stage.click();
    QTRY_VERIFY(stage.log.contains(kWaiting));
    QCOMPARE(stage.log.count(kEntered), 1);
    QVERIFY(!stage.server.paths().contains(ServerPaths::kR2OtgImage));
    QVERIFY(stage.panel->isUpgrading());
    QVERIFY(!stage.panel->offersRetry());
    QVERIFY(!stage.panel->hasImage(Chip::Pc));
}

void DownloadsTest::waitsWhenTheOtgImageIsEmpty()
{
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2OtgImage, Server::page(""));
    stage.click();
    QTRY_VERIFY(stage.log.contains(kWaiting));
    QVERIFY(stage.panel->hasImage(Chip::Pc));
    QVERIFY(!stage.panel->hasImage(Chip::Otg));
    QVERIFY(stage.panel->isUpgrading());
    QVERIFY(!stage.log.contains(kAllDownloaded));
}

void DownloadsTest::takesAnErrorPageForAnImage()
{
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2PcImage, Server::page("not found", 404));
    stage.click();
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
    QCOMPARE(contentOf(stage.image(u"R2_PC1.2.3.bin"_s)), QByteArrayLiteral("not found"));
}

void DownloadsTest::waitsWhenTheFolderCannotBeMade()
{
    const ReadyToUpgrade stage;
    writeFile(stage.sandbox.downloadFolder(), "a file where the folder should be");
    stage.click();
    QTest::qWait(0);
    QCOMPARE(stage.server.paths(), QStringList());
    QVERIFY(stage.panel->isUpgrading());
    QVERIFY(!stage.log.contains(kEntered));
}

void DownloadsTest::countsWhatIsOnDisk_data()
{
    QTest::addColumn<QByteArray>("pc");
    QTest::addColumn<QByteArray>("otg");
    QTest::addColumn<bool>("pcMarked");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("asked");
    const QString pcThere = u"PC firmware download well, this path is:  "_s;
    const QString otgThere = u"OTG firmware download well, this path is:  "_s;
    const QString next = u"Starting OTG firmware download..."_s;
    const QByteArray none;
    const QByteArray image("image");
    QTest::newRow("nothing there") << none << none << false << QStringList{kWaiting} << QStringList();
    QTest::newRow("the PC image there")
        << image << none << false << QStringList{pcThere, next} << QStringList{ServerPaths::kR2OtgImage};
    QTest::newRow("both there, none marked")
        << image << image << false << QStringList{pcThere, next} << QStringList{ServerPaths::kR2OtgImage};
    QTest::newRow("only the OTG image there")
        << none << image << false << QStringList{otgThere, kWaiting} << QStringList();
    QTest::newRow("the PC image marked, nothing more")
        << image << none << true << QStringList{kWaiting} << QStringList();
    QTest::newRow("the PC image marked, the OTG image there")
        << image << image << true << QStringList{otgThere, kAllDownloaded, u"[Upgrade] 当前无需升级"_s}
        << QStringList();
}

void DownloadsTest::countsWhatIsOnDisk()
{
    QFETCH(QByteArray, pc);
    QFETCH(QByteArray, otg);
    QFETCH(bool, pcMarked);
    QFETCH(QStringList, lines);
    QFETCH(QStringList, asked);
    ReadyToUpgrade stage;
    OpenPanel &panel = *stage.panel;
    panel.pretendImagePath(Chip::Pc, stage.image(u"pc.bin"_s));
    panel.pretendImagePath(Chip::Otg, stage.image(u"otg.bin"_s));
    panel.pretendImageAddress(Chip::Otg, QLatin1String(QUILLON_UPDATE_SERVER) + ServerPaths::kR2OtgImage);
    if (!pc.isEmpty())
        writeFile(panel.imagePath(Chip::Pc), pc);
    if (!otg.isEmpty())
        writeFile(panel.imagePath(Chip::Otg), otg);
    panel.pretendImage(Chip::Pc, pcMarked);
    stage.log.clear();
    panel.endDownload();
    QStringList logged = stage.log.lines();
    QCOMPARE(logged.takeFirst(), kEntered);
    for (QString &line : logged) {
        line.remove(panel.imagePath(Chip::Pc));
        line.remove(panel.imagePath(Chip::Otg));
    }
    logged.removeAll(u"ggxxxxxxxxx "_s);
    QCOMPARE(logged, lines);
    QTRY_COMPARE(stage.server.paths(), asked);
}

/// A run that waits is started again: the signal of the client must not be heard twice.
void DownloadsTest::hearsOfEachDownloadOnce()
{
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2PcImage, Server::page(""));
    stage.panel->startRun();
    QTRY_VERIFY(stage.log.contains(kWaiting));
    stage.server.answer(ServerPaths::kR2PcImage, Server::page(kPcImage));
    stage.log.clear();
    stage.panel->startRun();
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
    QCOMPARE(stage.log.count(kEntered), 2);
}

void DownloadsTest::stopsListeningWhenBothAreThere()
{
    ReadyToUpgrade stage;
    stage.click();
    QTRY_VERIFY(stage.log.contains(kAllDownloaded));
    stage.log.clear();
    Q_EMIT networking_class::getInstance()->network_finish_download();
    QVERIFY(!stage.log.contains(kEntered));
}

void DownloadsTest::survivesItsEnd_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("while it asks for the PC version") << ServerPaths::kR2PcVersion;
    QTest::newRow("while it asks for the OTG version") << ServerPaths::kR2OtgVersion;
    QTest::newRow("while the PC image arrives") << ServerPaths::kR2PcImage;
    QTest::newRow("while the OTG image arrives") << ServerPaths::kR2OtgImage;
}

void DownloadsTest::survivesItsEnd()
{
    QFETCH(QString, path);
    ReadyToUpgrade stage;
    stage.panel->pretendServerVersion(Chip::Pc, {});
    Server::Answer late = Server::version("1.2.3");
    late.delay = std::chrono::milliseconds(200);
    stage.server.answer(path, late);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, this, [&] {
        if (stage.server.paths().contains(path)) {
            timer.stop();
            stage.panel.reset();
        }
    });
    timer.start(5);
    stage.click();
    QTRY_VERIFY(!stage.panel);
    const auto replies = [] { return ClientInside::manager()->findChildren<QNetworkReply *>().size(); };
    QTRY_COMPARE(replies(), 0);
}

QUILLON_TEST(DownloadsTest)
#include "tst_downloads.moc"
