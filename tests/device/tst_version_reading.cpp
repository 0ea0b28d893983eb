// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A version reply: what is stored, what the server is asked, what the log says.
#include "tests/device/Chips.h"
#include "tests/panel/PanelTest.h"
#include "tests/support/LogOrder.h"
#include "tests/support/TestProgram.h"

using namespace Qt::StringLiterals;
using namespace Chips;

class VersionReadingTest : public PanelTest {
    Q_OBJECT

private slots:
    void registersBecomeAVersion_data();
    void registersBecomeAVersion();
    void serverIsAskedForTheSameChip_data();
    void serverIsAskedForTheSameChip();
    void answersOfTheServer_data();
    void answersOfTheServer();
    void otherAddressesStoreNothing_data();
    void otherAddressesStoreNothing();
    void shortRepliesStoreNothing();

    void wholeExchangeLeadsToAPlan();

private:
    QStringList lines() const { return withoutScans(stage().log.lines()); }
    void receive(Chip chip, Version version) { panel().receive(reply(chip, version)); }
};

void VersionReadingTest::registersBecomeAVersion_data()
{
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<Version>("registers");
    QTest::addColumn<QString>("version");
    for (const Chip chip : {Chip::Pc, Chip::Otg}) {
        const auto row = [&chip](const char *name, Version registers, const QString &version) {
            QTest::addRow("%s: %s", qPrintable(nameOf(chip)), name) << chip << registers << version;
        };
        row("1, 2, 3", {1, 2, 3}, u"1.2.3"_s);
        row("both bytes of each register", {0x0102, 0x0304, 0x0506}, u"258.772.1286"_s);
        row("0xFFFF is -1", {0xFFFF, 0, 0}, u"-1.0.0"_s);
        row("0x8000 is the lowest", {0, 0x8000, 0x7FFF}, u"0.-32768.32767"_s);
        row("0, 0, 0", {0, 0, 0}, u"0.0.0"_s);
        row("one hundred and four is no failure here", {104, 0, 0}, u"104.0.0"_s);
    }
}

void VersionReadingTest::registersBecomeAVersion()
{
    QFETCH(Chip, chip);
    QFETCH(Version, registers);

    receive(chip, registers);
    QTEST(panel().deviceVersion(chip), "version");
}

void VersionReadingTest::serverIsAskedForTheSameChip_data()
{
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("path");
    for (const Chip chip : {Chip::Pc, Chip::Otg}) {
        QTest::addRow("%s chip of R1", qPrintable(nameOf(chip)))
            << chip << DeviceModel::R1 << versionPath(chip, DeviceModel::R1);
        QTest::addRow("%s chip of R2", qPrintable(nameOf(chip)))
            << chip << DeviceModel::R2 << versionPath(chip, DeviceModel::R2);
    }
}

void VersionReadingTest::serverIsAskedForTheSameChip()
{
    QFETCH(Chip, chip);
    QFETCH(DeviceModel, model);
    QFETCH(QString, path);
    panel().pretendModel(model);
    stage().server.answer(path, ScriptedHttpServer::version("1.3.0"));

    receive(chip, {1, 2, 3});
    QCOMPARE(stage().server.paths(), QStringList(path));
    QCOMPARE(panel().serverVersion(chip), u"1.3.0"_s);
    QCOMPARE(lines().mid(1), QStringList({deviceLine(chip, u"1.2.3"_s), remoteLine(chip, u"1.3.0"_s)}));
}

void VersionReadingTest::answersOfTheServer_data()
{
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("remote");
    for (const Chip chip : {Chip::Pc, Chip::Otg}) {
        QTest::addRow("%s: a version", qPrintable(nameOf(chip)))
            << chip << QByteArray(R"([{"f_ver":"2.0.1"}])") << u"2.0.1"_s;
        QTest::addRow("%s: no list", qPrintable(nameOf(chip))) << chip << QByteArray("{}") << u"104"_s;
        QTest::addRow("%s: a list whose element names no version", qPrintable(nameOf(chip)))
            << chip << QByteArray("[{}]") << u""_s;
    }
}

void VersionReadingTest::answersOfTheServer()
{
    QFETCH(Chip, chip);
    QFETCH(QByteArray, body);
    QFETCH(QString, remote);
    panel().pretendServerVersion(chip, u"9.9.9"_s); // of an earlier read
    stage().server.answer(versionPath(chip, DeviceModel::R2), ScriptedHttpServer::page(body));

    receive(chip, {1, 2, 3});
    QCOMPARE(panel().serverVersion(chip), remote);
    QVERIFY(stage().log.contains(remoteLine(chip, remote)));
}

void VersionReadingTest::otherAddressesStoreNothing_data()
{
    QTest::addColumn<int>("start");
    QTest::newRow("0") << 0;
    QTest::newRow("one below the PC version") << 0x000A;
    QTest::newRow("one above the PC version") << 0x000C;
    QTest::newRow("one below the OTG version") << 0x000F;
    QTest::newRow("one above the OTG version") << 0x0011;
    QTest::newRow("the high byte counts: 0x010B") << 0x010B;
    QTest::newRow("bytes the other way round: 0x0B00") << 0x0B00;
    QTest::newRow("the mode register") << 0x1008;
}

void VersionReadingTest::otherAddressesStoreNothing()
{
    QFETCH(int, start);

    panel().receive(DeviceReplies::version(quint16(start), {1, 2, 3}));
    QVERIFY(panel().deviceVersion(Chip::Pc).isEmpty());
    QVERIFY(panel().deviceVersion(Chip::Otg).isEmpty());
    QCOMPARE(stage().server.paths(), QStringList());
}

void VersionReadingTest::shortRepliesStoreNothing()
{
    constexpr int kWhole = 15;
    const QByteArray reply = DeviceReplies::pcVersion({1, 2, 3});
    for (int size = 0; size < kWhole; ++size)
        panel().receive(reply.left(size));
    QVERIFY(panel().deviceVersion(Chip::Pc).isEmpty());

    panel().receive(reply.left(kWhole)); // the checksum may be missing
    QCOMPARE(panel().deviceVersion(Chip::Pc), u"1.2.3"_s);
}

// From the plug to the plan over the real link.
void VersionReadingTest::wholeExchangeLeadsToAPlan()
{
    stage().server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::version("1.3.0"));
    stage().server.answer(ServerPaths::kR2OtgVersion, ScriptedHttpServer::version("1.2.4"));
    PanelStage::bus().setResponder(DeviceReplies::device({1, 2, 3}, {1, 2, 4}));
    PanelStage::bus().plug(0x000E);

    QTRY_COMPARE(stage().log.count(u"[Upgrade] 需要升级 PC 固件。device= 1.2.3 remote= 1.3.0"_s), 1);
    QCOMPARE(panel().plan(), UpgradePlan::PcOnly);
    // The OTG version may come in while the server is still busy with the PC version.
    for (const QStringList &order :
         {QStringList{u" receive dfu mode is:  off"_s, deviceLine(Chip::Pc, u"1.2.3"_s),
                      deviceLine(Chip::Otg, u"1.2.4"_s)},
          QStringList{deviceLine(Chip::Pc, u"1.2.3"_s), remoteLine(Chip::Pc, u"1.3.0"_s)},
          QStringList{deviceLine(Chip::Otg, u"1.2.4"_s), remoteLine(Chip::Otg, u"1.2.4"_s)}})
        QCOMPARE(missingInOrder(lines(), order), QString());
    const QList<QByteArray> sent = PanelStage::bus().written();
    QCOMPARE(sent.size(), 3); // the query, then the PC version before the OTG version
    QCOMPARE(sent.at(1).mid(5, 2), QByteArray::fromHex("060b"));
    QCOMPARE(sent.at(2).mid(5, 2), QByteArray::fromHex("0610"));
}

QUILLON_TEST(VersionReadingTest)
#include "tst_version_reading.moc"
