// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What depends on the model: product IDs, the identity a chip is flashed under, server addresses, file
// prefix.
#include "tests/panel/PanelTest.h"
#include "tests/support/TestProgram.h"

#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {
using Address = QString (OpenPanel::*)(Chip) const;

QString pathAndQuery(const QString &address)
{
    return QUrl(address).toString(QUrl::RemoveScheme | QUrl::RemoveAuthority);
}
} // namespace

class ModelsTest : public PanelTest {
    Q_OBJECT

private slots:
    void productIds_data();
    void productIds();
    void dfuProductIds_data();
    void dfuProductIds();
    void pcTarget_data();
    void pcTarget();
    void otgTarget_data();
    void otgTarget();
    void serverPaths_data();
    void serverPaths();
    void serverIsOneBareHost_data();
    void serverIsOneBareHost();
    void filePrefix_data();
    void filePrefix();
    void answersChangeNothing();
};

void ModelsTest::productIds_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("pcNormal");
    QTest::addColumn<int>("pcDfu");
    QTest::addColumn<int>("otgNormal");
    QTest::addColumn<int>("otgDfu");
    QTest::newRow("R1: the OTG chip has one identity for both modes")
        << DeviceModel::R1 << 1 << 16 << 18 << 18;
    QTest::newRow("R2") << DeviceModel::R2 << 14 << 255 << 31 << 101;
    QTest::newRow("2 is served as R2") << DeviceModel(2) << 14 << 255 << 31 << 101;
    QTest::newRow("-1 is served as R2") << DeviceModel(-1) << 14 << 255 << 31 << 101;
}

void ModelsTest::productIds()
{
    QFETCH(DeviceModel, model);
    panel().pretendModel(model);

    QTEST(panel().normalId(Chip::Pc), "pcNormal");
    QTEST(panel().bootLoaderId(Chip::Pc), "pcDfu");
    QTEST(panel().normalId(Chip::Otg), "otgNormal");
    QTEST(panel().bootLoaderId(Chip::Otg), "otgDfu");
}

void ModelsTest::dfuProductIds_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("productId");
    QTest::addColumn<bool>("isDfu");
    QTest::newRow("R1: 0x0010 is the PC boot loader") << DeviceModel::R1 << 16 << true;
    QTest::newRow("R1: 0x0012 counts as a boot loader though it is the OTG chip's normal identity")
        << DeviceModel::R1 << 18 << true;
    QTest::newRow("R1: 0x0001 is normal") << DeviceModel::R1 << 1 << false;
    QTest::newRow("R1: R2's PC boot loader is not R1's") << DeviceModel::R1 << 255 << false;
    QTest::newRow("R1: R2's OTG boot loader is not R1's") << DeviceModel::R1 << 101 << false;
    QTest::newRow("R2: 0x00FF is the PC boot loader") << DeviceModel::R2 << 255 << true;
    QTest::newRow("R2: 0x0065 is the OTG boot loader") << DeviceModel::R2 << 101 << true;
    QTest::newRow("R2: 0x000E is normal") << DeviceModel::R2 << 14 << false;
    QTest::newRow("R2: 0x001F is normal") << DeviceModel::R2 << 31 << false;
    QTest::newRow("R2: R1's PC boot loader is not R2's") << DeviceModel::R2 << 16 << false;
    QTest::newRow("R2: 0x0012 is not R2's") << DeviceModel::R2 << 18 << false;
    QTest::newRow("R2: no product ID") << DeviceModel::R2 << 0 << false;
    QTest::newRow("2 is served as R2: 0x00FF") << DeviceModel(2) << 255 << true;
    QTest::newRow("2 is served as R2: 0x0010") << DeviceModel(2) << 16 << false;
}

void ModelsTest::dfuProductIds()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, productId);
    panel().pretendModel(model);

    QTEST(panel().isBootLoaderId(productId), "isDfu");
}

void ModelsTest::pcTarget_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("lastSeen");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<int>("target");
    QTest::newRow("R1: never seen, the normal identity") << DeviceModel::R1 << 0 << false << 1;
    QTest::newRow("R1: never seen and recovering, the boot loader") << DeviceModel::R1 << 0 << true << 16;
    QTest::newRow("R2: never seen, the normal identity") << DeviceModel::R2 << 0 << false << 14;
    QTest::newRow("R2: never seen and recovering, the boot loader") << DeviceModel::R2 << 0 << true << 255;
    QTest::newRow("R2: seen in its boot loader") << DeviceModel::R2 << 255 << false << 255;
    QTest::newRow("R2: seen running and recovering, what was seen wins")
        << DeviceModel::R2 << 14 << true << 14;
    QTest::newRow("R2: what was seen wins over the model") << DeviceModel::R2 << 16 << false << 16;
    QTest::newRow("R2: what was seen wins over model and recovery") << DeviceModel::R2 << 16 << true << 16;
    QTest::newRow("2 is served as R2") << DeviceModel(2) << 0 << true << 255;
}

void ModelsTest::pcTarget()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, lastSeen);
    QFETCH(bool, recovering);
    panel().pretendModel(model);
    panel().pretendLastSeenId(Chip::Pc, lastSeen);
    panel().pretendLastSeenId(Chip::Otg, 101); // the other chip does not matter
    panel().pretendRecovering(recovering);

    QTEST(panel().targetId(Chip::Pc), "target");
    panel().pretendRecovering(false);
}

void ModelsTest::otgTarget_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<int>("lastSeen");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<int>("target");
    QTest::newRow("R1: never seen") << DeviceModel::R1 << 0 << false << 18;
    QTest::newRow("R1: never seen and recovering") << DeviceModel::R1 << 0 << true << 18;
    QTest::newRow("R2: never seen") << DeviceModel::R2 << 0 << false << 31;
    QTest::newRow("R2: never seen and recovering, still the normal identity")
        << DeviceModel::R2 << 0 << true << 31;
    QTest::newRow("R2: seen in its boot loader") << DeviceModel::R2 << 101 << false << 101;
    QTest::newRow("R2: what was seen wins over the model") << DeviceModel::R2 << 18 << true << 18;
    QTest::newRow("2 is served as R2") << DeviceModel(2) << 0 << false << 31;
}

void ModelsTest::otgTarget()
{
    QFETCH(DeviceModel, model);
    QFETCH(int, lastSeen);
    QFETCH(bool, recovering);
    panel().pretendModel(model);
    panel().pretendLastSeenId(Chip::Otg, lastSeen);
    panel().pretendLastSeenId(Chip::Pc, 255);
    panel().pretendRecovering(recovering);

    QTEST(panel().targetId(Chip::Otg), "target");
    panel().pretendRecovering(false);
}

void ModelsTest::serverPaths_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<Address>("address");
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<QString>("path");
    const auto rows = [](const char *name, Address address, Chip chip, const QString &r1, const QString &r2) {
        QTest::addRow("%s of R1", name) << DeviceModel::R1 << address << chip << r1;
        QTest::addRow("%s of R2", name) << DeviceModel::R2 << address << chip << r2;
        QTest::addRow("%s of 2, served as R2", name) << DeviceModel(2) << address << chip << r2;
    };
    rows("PC version", &OpenPanel::versionAddress, Chip::Pc, u"/upinfo_test.aspx?proj_name=R1MCU"_s,
         u"/upinfo_test.aspx?proj_name=R2MCU"_s);
    rows("OTG version", &OpenPanel::versionAddress, Chip::Otg, u"/upinfo_test.aspx?proj_name=R1OTG"_s,
         u"/upinfo_test.aspx?proj_name=R2OTG"_s);
    rows("PC image", &OpenPanel::imageAddressOfModel, Chip::Pc, u"/dnfile_test.aspx?f_sn=153"_s,
         u"/dnfile_test.aspx?f_sn=155"_s);
    rows("OTG image", &OpenPanel::imageAddressOfModel, Chip::Otg, u"/dnfile_test.aspx?f_sn=154"_s,
         u"/dnfile_test.aspx?f_sn=156"_s);
}

void ModelsTest::serverPaths()
{
    QFETCH(DeviceModel, model);
    QFETCH(Address, address);
    QFETCH(Chip, chip);
    QFETCH(QString, path);
    panel().pretendModel(model);

    const QString whole = (panel().*address)(chip);
    QCOMPARE(pathAndQuery(whole), path);
    QVERIFY2(whole.endsWith(path), qPrintable(whole)); // byte for byte, nothing escaped
}

void ModelsTest::serverIsOneBareHost_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::newRow("R1") << DeviceModel::R1;
    QTest::newRow("R2") << DeviceModel::R2;
}

void ModelsTest::serverIsOneBareHost()
{
    QFETCH(DeviceModel, model);
    const QUrl reference(panel().versionAddress(Chip::Pc));
    panel().pretendModel(model);

    for (const QString &whole :
         {panel().versionAddress(Chip::Pc), panel().versionAddress(Chip::Otg),
          panel().imageAddressOfModel(Chip::Pc), panel().imageAddressOfModel(Chip::Otg)}) {
        const QUrl url(whole, QUrl::StrictMode);
        QVERIFY2(url.isValid(), qPrintable(whole));
        QCOMPARE(url.scheme(), u"http"_s);
        QVERIFY(!url.host().isEmpty());
        QCOMPARE(url.host(), reference.host());
        QCOMPARE(url.port(), -1);
        QVERIFY(url.userInfo().isEmpty());
    }
}

void ModelsTest::filePrefix_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("prefix");
    QTest::newRow("R1") << DeviceModel::R1 << u"R1"_s;
    QTest::newRow("R2") << DeviceModel::R2 << u"R2"_s;
    QTest::newRow("2 is served as R2") << DeviceModel(2) << u"R2"_s;
}

void ModelsTest::filePrefix()
{
    QFETCH(DeviceModel, model);
    panel().pretendModel(model);

    QTEST(panel().filePrefix(), "prefix");
}

void ModelsTest::answersChangeNothing()
{
    const QStringList before = panel().state();

    for (const Chip chip : {Chip::Pc, Chip::Otg}) {
        for (const auto productId : {&OpenPanel::normalId, &OpenPanel::bootLoaderId, &OpenPanel::targetId})
            QCOMPARE((panel().*productId)(chip), (panel().*productId)(chip));
    }
    QVERIFY(panel().isBootLoaderId(255));
    QVERIFY(!panel().versionAddress(Chip::Pc).isEmpty());
    QVERIFY(!panel().filePrefix().isEmpty());

    QCOMPARE(panel().state(), before);
}

QUILLON_TEST(ModelsTest)
#include "tst_models.moc"
