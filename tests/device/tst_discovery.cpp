// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// One list of device paths judged: what is recognised and remembered, and which model the panel then serves.
#include "tests/device/ScanTest.h"
#include "tests/device/Scans.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace Scans;

namespace {
const QString kR1Switch = u"[ConnectingR2] 检测到R1 DFU PID，自动切换 model 为 R1"_s;
const QString kR2Switch = u"[ConnectingR2] 检测到R2 DFU PID，自动切换 model 为 R2"_s;
} // namespace

class DiscoveryTest : public ScanTest {
    Q_OBJECT

private slots:
    void logBegins_data();
    void logBegins();
    void pathsAreClassified_data();
    void pathsAreClassified();
    void oddPaths_data();
    void oddPaths();
    void modelFollowsABootLoader_data();
    void modelFollowsABootLoader();
    void modelSwitchResetsNothing();
};

void DiscoveryTest::logBegins_data()
{
    QTest::addColumn<QStringList>("devices");
    QTest::addColumn<bool>("isUpgrading");
    QTest::addColumn<bool>("isRecovering");
    QTest::newRow("no device") << QStringList() << false << false;
    QTest::newRow("one device") << paths({u"1234"_s}) << true << false;
    QTest::newRow("three devices") << paths({u"1234"_s, u"1235"_s, u"1236"_s}) << false << true;
}

void DiscoveryTest::logBegins()
{
    QFETCH(QStringList, devices);
    QFETCH(bool, isUpgrading);
    QFETCH(bool, isRecovering);
    panel().pretendUpgrading(isUpgrading);
    panel().pretendRecovering(isRecovering);

    panel().seeDevices(devices);
    QCOMPARE(lines().mid(0, 2),
             QStringList({u"[ConnectingR2] START - m_isUpgrading= %1  m_autoRecoverRunning= %2"_s.arg(
                              word(isUpgrading), word(isRecovering)),
                          u"[FirmwareUpgradeWidget定时器扫描] 发现  %1  个设备"_s.arg(devices.size())}));
}

void DiscoveryTest::pathsAreClassified_data()
{
    QTest::addColumn<DeviceModel>("modelBefore");
    QTest::addColumn<int>("lastPcBefore");
    QTest::addColumn<int>("lastOtgBefore");
    QTest::addColumn<QStringList>("productIds");
    QTest::addColumn<QString>("found"); // P and p: PC chip, normal and boot loader; O and o: OTG chip
    QTest::addColumn<int>("lastPc");
    QTest::addColumn<int>("lastOtg");
    QTest::addColumn<QString>("lastLine"); // of the last path
    const auto row = [](const char *name, DeviceModel modelBefore, std::pair<int, int> before,
                        const QStringList &productIds, const QString &found, std::pair<int, int> after,
                        const QString &lastLine) {
        QTest::newRow(name) << modelBefore << before.first << before.second << productIds << found
                            << after.first << after.second << lastLine;
    };
    const QString normal = u"find R2 device"_s;
    const QString otg = u"find R2 OTG device"_s;
    const QString otgDfu = u"find R2 OTG DFU device"_s;

    row("nothing keeps what was seen", DeviceModel::R2, {14, 31}, {}, u""_s, {14, 31}, u""_s);
    row("R2: the PC chip", DeviceModel::R2, {0, 0}, {u"000e"_s}, u"P"_s, {14, 0}, normal);
    row("R1: the PC chip", DeviceModel::R1, {0, 0}, {u"0001"_s}, u"P"_s, {1, 0}, normal);
    row("2 is served as R2: the PC chip", DeviceModel(2), {0, 0}, {u"000e"_s}, u"P"_s, {14, 0}, normal);
    row("upper case", DeviceModel::R2, {0, 0}, {u"000E"_s}, u"P"_s, {14, 0}, normal);
    row("R2: its boot loader", DeviceModel::R2, {0, 0}, {u"00ff"_s}, u"p"_s, {255, 0},
        u"find DFU device, pid= ff"_s);
    row("R2: its boot loader in upper case", DeviceModel::R2, {0, 0}, {u"00FF"_s}, u"p"_s, {255, 0},
        u"find DFU device, pid= ff"_s);
    row("R1: its boot loader", DeviceModel::R1, {0, 0}, {u"0010"_s}, u"p"_s, {16, 0},
        u"find DFU device, pid= 10"_s);
    row("R2: the OTG chip", DeviceModel::R2, {0, 0}, {u"001f"_s}, u"O"_s, {0, 31}, otg);
    row("R2: the OTG chip's boot loader", DeviceModel::R2, {0, 0}, {u"0065"_s}, u"o"_s, {0, 101}, otgDfu);
    row("R1: 0x0012 is always the normal OTG chip", DeviceModel::R1, {0, 0}, {u"0012"_s}, u"O"_s, {0, 18},
        otg);
    row("R2: 0x0012 is nothing", DeviceModel::R2, {0, 0}, {u"0012"_s}, u""_s, {0, 0}, u"2pid is:  0012"_s);
    row("R2: an R1 in normal mode is nothing", DeviceModel::R2, {0, 0}, {u"0001"_s}, u""_s, {0, 0},
        u"2pid is:  0001"_s);
    row("R1: an R2 in normal mode is nothing", DeviceModel::R1, {0, 0}, {u"000e"_s}, u""_s, {0, 0},
        u"2pid is:  000e"_s);
    row("R1: an R2's OTG chip is nothing", DeviceModel::R1, {0, 0}, {u"001f"_s}, u""_s, {0, 0},
        u"2pid is:  001f"_s);
    row("R1: an R2's OTG boot loader is nothing", DeviceModel::R1, {0, 0}, {u"0065"_s}, u""_s, {0, 0},
        u"2pid is:  0065"_s);
    row("another device of the family", DeviceModel::R2, {14, 31}, {u"1234"_s}, u""_s, {14, 31},
        u"2pid is:  1234"_s);

    row("both chips", DeviceModel::R2, {0, 0}, {u"000e"_s, u"001f"_s}, u"PO"_s, {14, 31}, otg);
    row("both chips the other way round", DeviceModel::R2, {0, 0}, {u"001f"_s, u"000e"_s}, u"PO"_s, {14, 31},
        normal);
    row("the later PC match is remembered: boot loader", DeviceModel::R2, {0, 0}, {u"000e"_s, u"00ff"_s},
        u"Pp"_s, {255, 0}, u"find DFU device, pid= ff"_s);
    row("the later PC match is remembered: normal", DeviceModel::R2, {0, 0}, {u"00ff"_s, u"000e"_s}, u"Pp"_s,
        {14, 0}, normal);
    row("a PC chip overwrites what was seen before", DeviceModel::R2, {255, 0}, {u"000e"_s}, u"P"_s, {14, 0},
        normal);
    row("an OTG chip leaves the PC chip remembered", DeviceModel::R2, {14, 0}, {u"001f"_s}, u"O"_s, {14, 31},
        otg);

    row("a normal OTG sighting is not overwritten in the same list", DeviceModel::R2, {0, 0},
        {u"001f"_s, u"0065"_s}, u"Oo"_s, {0, 31}, otgDfu);
    row("a normal OTG sighting overwrites the boot loader", DeviceModel::R2, {0, 0}, {u"0065"_s, u"001f"_s},
        u"Oo"_s, {0, 31}, otg);
    row("a normal OTG sighting of an earlier list is not overwritten", DeviceModel::R2, {0, 31}, {u"0065"_s},
        u"o"_s, {0, 31}, otgDfu);
    row("another model's OTG sighting is overwritten", DeviceModel::R2, {0, 18}, {u"0065"_s}, u"o"_s,
        {0, 101}, otgDfu);
    row("everything at once", DeviceModel::R2, {0, 0},
        {u"0065"_s, u"001f"_s, u"00ff"_s, u"000e"_s, u"1234"_s}, u"PpOo"_s, {14, 31}, u"2pid is:  1234"_s);
}

void DiscoveryTest::pathsAreClassified()
{
    QFETCH(DeviceModel, modelBefore);
    QFETCH(int, lastPcBefore);
    QFETCH(int, lastOtgBefore);
    QFETCH(QStringList, productIds);
    QFETCH(QString, found);
    QFETCH(QString, lastLine);
    dropRecovery();
    panel().pretendModel(modelBefore);
    panel().pretendLastSeenId(Chip::Pc, lastPcBefore);
    panel().pretendLastSeenId(Chip::Otg, lastOtgBefore);

    panel().seeDevices(paths(productIds), {1, 2, 3}); // the list of product IDs is not looked at
    QTEST(panel().lastSeenId(Chip::Pc), "lastPc");
    QTEST(panel().lastSeenId(Chip::Otg), "lastOtg");
    const qsizetype foundAt = lines().indexOf(foundLine(found));
    QVERIFY2(foundAt > 0, qPrintable(lines().join(u'\n')));
    if (!lastLine.isEmpty())
        QCOMPARE(lines().at(foundAt - 1), lastLine);
    QCOMPARE(stage().log.startingWith(u"2pid is:  "_s).size(), productIds.size());
}

void DiscoveryTest::oddPaths_data()
{
    QTest::addColumn<QString>("oddPath");
    QTest::addColumn<QStringList>("pidLines");
    QTest::addColumn<QString>("found");
    QTest::newRow("empty") << QString() << QStringList() << u""_s;
    QTest::newRow("no product ID") << u"/dev/hidraw3"_s << QStringList() << u""_s;
    QTest::newRow("the vendor's is no product ID") << u"hid#vid_000e"_s << QStringList() << u""_s;
    QTest::newRow("upper-case mark and digits")
        << u"HID#VID_352F&PID_000E"_s << QStringList(u"2pid is:  000e"_s) << u"P"_s;
    QTest::newRow("not hexadecimal") << u"hid#vid_352f&pid_00ge"_s << QStringList(u"2pid is:  00ge"_s)
                                     << u""_s;
    QTest::newRow("four characters, whatever follows")
        << u"hid#vid_352f&pid_000e55zz"_s << QStringList(u"2pid is:  000e"_s) << u"P"_s;
    QTest::newRow("junk within the four characters")
        << u"hid#vid_352f&pid_e&mi_00"_s << QStringList(u"2pid is:  e&mi"_s) << u""_s;
    QTest::newRow("fewer than four at the end")
        << u"hid#vid_352f&pid_1f"_s << QStringList(u"2pid is:  1f"_s) << u"O"_s;
    QTest::newRow("nothing behind the mark")
        << u"hid#vid_352f&pid_"_s << QStringList(u"2pid is:  "_s) << u""_s;
    QTest::newRow("the first mark counts")
        << u"hid#vid_352f&pid_001f&pid_000e"_s << QStringList(u"2pid is:  001f"_s) << u"O"_s;
    QTest::newRow("only a mark") << u"pid_000e"_s << QStringList(u"2pid is:  000e"_s) << u"P"_s;
    QTest::newRow("not ASCII") << u"设备#pid_０００ｅ"_s << QStringList(u"2pid is:  ０００ｅ"_s) << u""_s;
    QTest::newRow("very long") << QString(100'000, u'x') + u"pid_000e" + QString(100'000, u'y')
                               << QStringList(u"2pid is:  000e"_s) << u"P"_s;
}

void DiscoveryTest::oddPaths()
{
    QFETCH(QString, oddPath);
    QFETCH(QString, found);

    panel().seeDevices({oddPath});
    QTEST(stage().log.startingWith(u"2pid is:  "_s), "pidLines");
    QVERIFY(stage().log.contains(foundLine(found)));
}

void DiscoveryTest::modelFollowsABootLoader_data()
{
    QTest::addColumn<DeviceModel>("modelBefore");
    QTest::addColumn<QStringList>("productIds");
    QTest::addColumn<DeviceModel>("modelAfter");
    QTest::addColumn<QStringList>("switchLines");
    QTest::addColumn<QString>("found");
    QTest::newRow("R2 sees the boot loader of an R1")
        << DeviceModel::R2 << QStringList(u"0010"_s) << DeviceModel::R1 << QStringList(kR1Switch) << u"p"_s;
    QTest::newRow("R1 sees the boot loader of an R2")
        << DeviceModel::R1 << QStringList(u"00ff"_s) << DeviceModel::R2 << QStringList(kR2Switch) << u"p"_s;
    QTest::newRow("R1 sees its own") << DeviceModel::R1 << QStringList(u"0010"_s) << DeviceModel::R1
                                     << QStringList() << u"p"_s;
    QTest::newRow("R2 sees its own") << DeviceModel::R2 << QStringList(u"00ff"_s) << DeviceModel::R2
                                     << QStringList() << u"p"_s;
    QTest::newRow("a switch changes the tests for the later paths")
        << DeviceModel::R2 << QStringList{u"0010"_s, u"0001"_s, u"0012"_s} << DeviceModel::R1
        << QStringList(kR1Switch) << u"pPO"_s;
    QTest::newRow("a switch does not change the tests for the earlier paths")
        << DeviceModel::R2 << QStringList{u"0001"_s, u"0012"_s, u"0010"_s} << DeviceModel::R1
        << QStringList(kR1Switch) << u"p"_s;
    QTest::newRow("both boot loaders, the last one stays")
        << DeviceModel::R2 << QStringList{u"0010"_s, u"00ff"_s} << DeviceModel::R2
        << QStringList{kR1Switch, kR2Switch} << u"p"_s;
    QTest::newRow("an R1's OTG chip switches nothing")
        << DeviceModel::R2 << QStringList(u"0012"_s) << DeviceModel::R2 << QStringList() << u""_s;
}

void DiscoveryTest::modelFollowsABootLoader()
{
    QFETCH(DeviceModel, modelBefore);
    QFETCH(QStringList, productIds);
    QFETCH(QString, found);
    dropRecovery();
    panel().pretendModel(modelBefore);

    panel().seeDevices(paths(productIds));
    QTEST(panel().model(), "modelAfter");
    QTEST(stage().log.startingWith(u"[ConnectingR2] 检测到"_s), "switchLines");
    QVERIFY(stage().log.contains(foundLine(found)));
    if (!stage().log.startingWith(u"[ConnectingR2] 检测到"_s).isEmpty()) {
        const qsizetype at
            = lines().indexOf(stage().log.startingWith(u"[ConnectingR2] 检测到"_s).constFirst());
        QVERIFY(lines().at(at + 1).startsWith(u"find DFU device, pid="));
    }
}

// The switch is not setDeviceModel(): what the panel knew stays.
void DiscoveryTest::modelSwitchResetsNothing()
{
    dropRecovery();
    panel().pretendDeviceVersion(Chip::Pc, u"1.2.3"_s);
    panel().pretendServerVersion(Chip::Pc, u"1.3.3"_s);
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendLastSeenId(Chip::Otg, 31);
    const QStringList before = panel().state();

    panel().seeDevices(paths({u"0010"_s}));
    QCOMPARE(changedState(before, panel().state()),
             QStringList({u"m_autoRecoverRunning=true"_s, u"m_isUpgrading=true"_s, u"m_deviceModel=0"_s,
                          u"lastDetectedPcPid=16"_s}));
    QVERIFY(stage().log.startingWith(u"setDeviceModel"_s).isEmpty());
}

QUILLON_TEST(DiscoveryTest)
#include "tst_discovery.moc"
