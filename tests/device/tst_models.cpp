// What depends on the model: product IDs, the identity a chip is flashed under, server addresses, file
// prefix.
#include "panel/FirmwareUpgradeWidget.h"
#include "tests/support/PanelState.h"
#include "tests/support/Sandbox.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TestProgram.h"

#include <QTest>
#include <QUrl>

#include <memory>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;

namespace {
using ProductId = int (FirmwareUpgradeWidget::*)() const;
using Address = QString (FirmwareUpgradeWidget::*)() const;

DeviceModel model(int value)
{
    return static_cast<DeviceModel>(value);
}

QString pathAndQuery(const QString &address)
{
    return QUrl(address).toString(QUrl::RemoveScheme | QUrl::RemoveAuthority);
}
} // namespace

class ModelsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

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

private:
    std::unique_ptr<Sandbox> m_sandbox;
    std::unique_ptr<FirmwareUpgradeWidget> m_panel;
};

void ModelsTest::initTestCase()
{
    ScriptedBus::install();
}

void ModelsTest::init()
{
    m_sandbox = std::make_unique<Sandbox>();
    m_panel = std::make_unique<FirmwareUpgradeWidget>();
}

void ModelsTest::cleanup()
{
    m_panel.reset();
    m_sandbox.reset();
}

void ModelsTest::productIds_data()
{
    QTest::addColumn<int>("modelValue");
    QTest::addColumn<int>("pcNormal");
    QTest::addColumn<int>("pcDfu");
    QTest::addColumn<int>("otgNormal");
    QTest::addColumn<int>("otgDfu");
    QTest::newRow("R1: the OTG chip has one identity for both modes") << 0 << 1 << 16 << 18 << 18;
    QTest::newRow("R2") << 1 << 14 << 255 << 31 << 101;
    QTest::newRow("2 is served as R2") << 2 << 14 << 255 << 31 << 101;
    QTest::newRow("-1 is served as R2") << -1 << 14 << 255 << 31 << 101;
}

void ModelsTest::productIds()
{
    QFETCH(int, modelValue);
    m_panel->m_deviceModel = model(modelValue);

    QTEST(m_panel->pcNormalPid(), "pcNormal");
    QTEST(m_panel->pcDfuPid(), "pcDfu");
    QTEST(m_panel->otgNormalPid(), "otgNormal");
    QTEST(m_panel->otgDfuPid(), "otgDfu");
}

void ModelsTest::dfuProductIds_data()
{
    QTest::addColumn<int>("modelValue");
    QTest::addColumn<int>("productId");
    QTest::addColumn<bool>("isDfu");
    QTest::newRow("R1: 0x0010 is the PC boot loader") << 0 << 16 << true;
    QTest::newRow("R1: 0x0012 counts as a boot loader though it is the OTG chip's normal identity")
        << 0 << 18 << true;
    QTest::newRow("R1: 0x0001 is normal") << 0 << 1 << false;
    QTest::newRow("R1: R2's PC boot loader is not R1's") << 0 << 255 << false;
    QTest::newRow("R1: R2's OTG boot loader is not R1's") << 0 << 101 << false;
    QTest::newRow("R2: 0x00FF is the PC boot loader") << 1 << 255 << true;
    QTest::newRow("R2: 0x0065 is the OTG boot loader") << 1 << 101 << true;
    QTest::newRow("R2: 0x000E is normal") << 1 << 14 << false;
    QTest::newRow("R2: 0x001F is normal") << 1 << 31 << false;
    QTest::newRow("R2: R1's PC boot loader is not R2's") << 1 << 16 << false;
    QTest::newRow("R2: 0x0012 is not R2's") << 1 << 18 << false;
    QTest::newRow("R2: no product ID") << 1 << 0 << false;
    QTest::newRow("2 is served as R2: 0x00FF") << 2 << 255 << true;
    QTest::newRow("2 is served as R2: 0x0010") << 2 << 16 << false;
}

void ModelsTest::dfuProductIds()
{
    QFETCH(int, modelValue);
    QFETCH(int, productId);
    m_panel->m_deviceModel = model(modelValue);

    QTEST(m_panel->isDfuPid(productId), "isDfu");
}

void ModelsTest::pcTarget_data()
{
    QTest::addColumn<int>("modelValue");
    QTest::addColumn<int>("lastSeen");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<int>("target");
    QTest::newRow("R1: never seen, the normal identity") << 0 << 0 << false << 1;
    QTest::newRow("R1: never seen and recovering, the boot loader") << 0 << 0 << true << 16;
    QTest::newRow("R2: never seen, the normal identity") << 1 << 0 << false << 14;
    QTest::newRow("R2: never seen and recovering, the boot loader") << 1 << 0 << true << 255;
    QTest::newRow("R2: seen in its boot loader") << 1 << 255 << false << 255;
    QTest::newRow("R2: seen running and recovering, what was seen wins") << 1 << 14 << true << 14;
    QTest::newRow("R2: what was seen wins over the model") << 1 << 16 << false << 16;
    QTest::newRow("R2: what was seen wins over model and recovery") << 1 << 16 << true << 16;
    QTest::newRow("2 is served as R2") << 2 << 0 << true << 255;
}

void ModelsTest::pcTarget()
{
    QFETCH(int, modelValue);
    QFETCH(int, lastSeen);
    QFETCH(bool, recovering);
    m_panel->m_deviceModel = model(modelValue);
    m_panel->lastDetectedPcPid = lastSeen;
    m_panel->lastDetectedOtgPid = 101; // the other chip does not matter
    m_panel->m_autoRecoverRunning = recovering;

    QTEST(m_panel->resolvePcTargetPid(), "target");
    m_panel->m_autoRecoverRunning = false;
}

void ModelsTest::otgTarget_data()
{
    QTest::addColumn<int>("modelValue");
    QTest::addColumn<int>("lastSeen");
    QTest::addColumn<bool>("recovering");
    QTest::addColumn<int>("target");
    QTest::newRow("R1: never seen") << 0 << 0 << false << 18;
    QTest::newRow("R1: never seen and recovering") << 0 << 0 << true << 18;
    QTest::newRow("R2: never seen") << 1 << 0 << false << 31;
    QTest::newRow("R2: never seen and recovering, still the normal identity") << 1 << 0 << true << 31;
    QTest::newRow("R2: seen in its boot loader") << 1 << 101 << false << 101;
    QTest::newRow("R2: what was seen wins over the model") << 1 << 18 << true << 18;
    QTest::newRow("2 is served as R2") << 2 << 0 << false << 31;
}

void ModelsTest::otgTarget()
{
    QFETCH(int, modelValue);
    QFETCH(int, lastSeen);
    QFETCH(bool, recovering);
    m_panel->m_deviceModel = model(modelValue);
    m_panel->lastDetectedOtgPid = lastSeen;
    m_panel->lastDetectedPcPid = 255;
    m_panel->m_autoRecoverRunning = recovering;

    QTEST(m_panel->resolveOtgTargetPid(), "target");
    m_panel->m_autoRecoverRunning = false;
}

void ModelsTest::serverPaths_data()
{
    QTest::addColumn<int>("modelValue");
    QTest::addColumn<Address>("address");
    QTest::addColumn<QString>("path");
    const auto rows = [](const char *name, Address address, const QString &r1, const QString &r2) {
        QTest::addRow("%s of R1", name) << 0 << address << r1;
        QTest::addRow("%s of R2", name) << 1 << address << r2;
        QTest::addRow("%s of 2, served as R2", name) << 2 << address << r2;
    };
    rows("PC version", &FirmwareUpgradeWidget::pcVersionUrl, u"/upinfo_test.aspx?proj_name=R1MCU"_s,
         u"/upinfo_test.aspx?proj_name=R2MCU"_s);
    rows("OTG version", &FirmwareUpgradeWidget::otgVersionUrl, u"/upinfo_test.aspx?proj_name=R1OTG"_s,
         u"/upinfo_test.aspx?proj_name=R2OTG"_s);
    rows("PC image", &FirmwareUpgradeWidget::pcFirmwareDownloadUrl, u"/dnfile_test.aspx?f_sn=153"_s,
         u"/dnfile_test.aspx?f_sn=155"_s);
    rows("OTG image", &FirmwareUpgradeWidget::otgFirmwareDownloadUrl, u"/dnfile_test.aspx?f_sn=154"_s,
         u"/dnfile_test.aspx?f_sn=156"_s);
}

void ModelsTest::serverPaths()
{
    QFETCH(int, modelValue);
    QFETCH(Address, address);
    QFETCH(QString, path);
    m_panel->m_deviceModel = model(modelValue);

    const QString whole = ((*m_panel).*address)();
    QCOMPARE(pathAndQuery(whole), path);
    QVERIFY2(whole.endsWith(path), qPrintable(whole)); // byte for byte, nothing escaped
}

void ModelsTest::serverIsOneBareHost_data()
{
    QTest::addColumn<int>("modelValue");
    QTest::newRow("R1") << 0;
    QTest::newRow("R2") << 1;
}

void ModelsTest::serverIsOneBareHost()
{
    QFETCH(int, modelValue);
    const QUrl reference(m_panel->pcVersionUrl());
    m_panel->m_deviceModel = model(modelValue);

    for (const Address address :
         {&FirmwareUpgradeWidget::pcVersionUrl, &FirmwareUpgradeWidget::otgVersionUrl,
          &FirmwareUpgradeWidget::pcFirmwareDownloadUrl, &FirmwareUpgradeWidget::otgFirmwareDownloadUrl}) {
        const QString whole = ((*m_panel).*address)();
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
    QTest::addColumn<int>("modelValue");
    QTest::addColumn<QString>("prefix");
    QTest::newRow("R1") << 0 << u"R1"_s;
    QTest::newRow("R2") << 1 << u"R2"_s;
    QTest::newRow("2 is served as R2") << 2 << u"R2"_s;
}

void ModelsTest::filePrefix()
{
    QFETCH(int, modelValue);
    m_panel->m_deviceModel = model(modelValue);

    QTEST(m_panel->firmwareFilePrefix(), "prefix");
}

void ModelsTest::answersChangeNothing()
{
    const QStringList before = panelState(*m_panel);
    const FirmwareUpgradeWidget &panel = *m_panel;

    for (const ProductId productId :
         {&FirmwareUpgradeWidget::pcNormalPid, &FirmwareUpgradeWidget::pcDfuPid,
          &FirmwareUpgradeWidget::otgNormalPid, &FirmwareUpgradeWidget::otgDfuPid,
          &FirmwareUpgradeWidget::resolvePcTargetPid, &FirmwareUpgradeWidget::resolveOtgTargetPid})
        QCOMPARE((panel.*productId)(), (panel.*productId)());
    QVERIFY(panel.isDfuPid(255));
    QVERIFY(!panel.pcVersionUrl().isEmpty());
    QVERIFY(!panel.firmwareFilePrefix().isEmpty());

    QCOMPARE(panelState(*m_panel), before);
}

QUILLON_TEST(ModelsTest)
#include "tst_models.moc"
