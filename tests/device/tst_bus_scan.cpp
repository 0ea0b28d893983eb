// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a list of paths shows of a device, and what is remembered of it.
#include "device/BusScan.h"
#include "device/ModelTable.h"
#include "tests/support/TestProgram.h"

#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;

using Kind = BusInterface::Kind;

namespace {
constexpr KnownDevice kNewR1{DeviceModel::R1, 0, 0};
constexpr KnownDevice kNewR2{DeviceModel::R2, 0, 0};

QString path(const char *productId)
{
    return u"hid#vid_352f&pid_"_s + QLatin1String(productId) + u"#1"_s;
}
} // namespace

class BusScanTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachModelKnowsItsInterfaces();
    void aBootLoaderTellsItsModel();
    void whatFollowsIsJudgedByTheNewModel();
    void aRunningOtgChipOutweighsItsBootLoader();
    void theLastPathOfAKindCounts();
    void aPathWithoutAProductIdIsLeftOut_data();
    void aPathWithoutAProductIdIsLeftOut();
    void aProductIdThatIsNoNumberIsForeign();
    void nothingKeepsWhatWasKnown();
};

void BusScanTest::eachModelKnowsItsInterfaces()
{
    for (const ModelRow &row : modelRows()) {
        for (const auto &[pid, kind] : {std::pair{row.pc.normalPid, Kind::PcNormal},
                                        {row.pc.dfuPid, Kind::PcBootLoader},
                                        {row.otg.normalPid, Kind::OtgNormal}}) {
            const QByteArray digits = QByteArray::number(pid, 16).rightJustified(4, '0');
            const BusScan scan = scanBus({path(digits.constData())}, {row.model, 0, 0});
            QVERIFY2(scan.found(kind), digits.constData());
            QCOMPARE(scan.interfaces.first().productId, pid);
            QCOMPARE(scan.known.model, row.model);
        }
    }
}

void BusScanTest::aBootLoaderTellsItsModel()
{
    const BusScan scan = scanBus({path("0010")}, kNewR2);
    QCOMPARE(scan.known.model, DeviceModel::R1);
    QVERIFY(scan.interfaces.first().newModel == DeviceModel::R1);
    QCOMPARE(scan.known.pcPid, 0x0010);
    QVERIFY(!scanBus({path("0010")}, kNewR1).interfaces.first().newModel);
}

void BusScanTest::whatFollowsIsJudgedByTheNewModel()
{
    const BusScan scan = scanBus({path("0012"), path("0010"), path("0012")}, kNewR2);
    QCOMPARE(scan.interfaces.at(0).kind, Kind::Foreign);
    QCOMPARE(scan.interfaces.at(2).kind, Kind::OtgNormal);
}

void BusScanTest::aRunningOtgChipOutweighsItsBootLoader()
{
    QCOMPARE(scanBus({path("001f"), path("0065")}, kNewR2).known.otgPid, 0x001F);
    QCOMPARE(scanBus({path("0065")}, kNewR2).known.otgPid, 0x0065);
}

void BusScanTest::theLastPathOfAKindCounts()
{
    const QStringList paths{path("000e"), path("000e") + u"&second"_s, path("001f")};
    QCOMPARE(scanBus(paths, kNewR2).pathOf(Kind::PcNormal), paths.at(1));
    QCOMPARE(scanBus(paths, kNewR2).pathOf(Kind::PcBootLoader), QString());
}

void BusScanTest::aPathWithoutAProductIdIsLeftOut_data()
{
    QTest::addColumn<QString>("devicePath");
    QTest::newRow("empty") << QString();
    QTest::newRow("a vendor ID only") << u"hid#vid_352f"_s;
}

void BusScanTest::aPathWithoutAProductIdIsLeftOut()
{
    QFETCH(QString, devicePath);
    QVERIFY(scanBus({devicePath}, kNewR2).interfaces.isEmpty());
}

void BusScanTest::aProductIdThatIsNoNumberIsForeign()
{
    const BusScan scan = scanBus({path("wxyz")}, kNewR2);
    QCOMPARE(scan.interfaces.first().productIdText, u"wxyz"_s);
    QCOMPARE(scan.interfaces.first().kind, Kind::Foreign);
}

void BusScanTest::nothingKeepsWhatWasKnown()
{
    const BusScan scan = scanBus({path("1234")}, {DeviceModel::R1, 16, 18});
    QCOMPARE(scan.known.model, DeviceModel::R1);
    QCOMPARE(scan.known.pcPid, 16);
    QCOMPARE(scan.known.otgPid, 18);
}

QUILLON_TEST_CORE(BusScanTest)
#include "tst_bus_scan.moc"
