// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A device that answers "0.0.0": what is waited for after an upgrade, and what is taken as it is.
#include "tests/device/Chips.h"
#include "tests/panel/PanelTest.h"
#include "tests/support/TestProgram.h"

using namespace Qt::StringLiterals;
using namespace Chips;

namespace {
constexpr Version kNotReady{0, 0, 0};
const QString kIgnored = u"[handle_Continue_RD] 暂时忽略 0.0.0，等待设备准备好"_s;
const QString kAccepted = u"[handle_Continue_RD] 连续5次收到 0.0.0，判定为设备变砖，接受此版本号"_s;

QString countLine(Chip chip, int count)
{
    return u"[handle_Continue_RD] %1版本号为 0.0.0，重试计数: %2"_s.arg(nameOf(chip)).arg(count);
}
} // namespace

class NotReadyTest : public PanelTest {
    Q_OBJECT

private slots:
    void notReadyOutsideTheWaitIsStored_data();
    void notReadyOutsideTheWaitIsStored();
    void fourAreIgnoredAndTheFifthIsAccepted_data();
    void fourAreIgnoredAndTheFifthIsAccepted();
    void chipsShareTheCount();
    void anotherVersionResetsTheCount_data();
    void anotherVersionResetsTheCount();
    void endOfTheWaitResetsTheCount();
    void acceptedNotReadyEndsTheWait();

private:
    QStringList lines() const { return withoutScans(stage().log.lines()); }
    void receive(Chip chip, Version version) { panel().receive(reply(chip, version)); }
};

void NotReadyTest::notReadyOutsideTheWaitIsStored_data()
{
    addRows();
}

void NotReadyTest::notReadyOutsideTheWaitIsStored()
{
    QFETCH(Chip, chip);
    panel().pretendNotReadyReplies(3);

    receive(chip, kNotReady);
    QCOMPARE(panel().deviceVersion(chip), u"0.0.0"_s);
    QCOMPARE(panel().notReadyReplies(), 3); // neither counted nor reset
    QVERIFY(stage().log.contains(deviceLine(chip, u"0.0.0"_s)));
    QCOMPARE(stage().log.startingWith(u"[handle_Continue_RD]"_s), QStringList());
    QCOMPARE(stage().server.paths(), QStringList(versionPath(chip, DeviceModel::R2)));
}

void NotReadyTest::fourAreIgnoredAndTheFifthIsAccepted_data()
{
    addRows();
}

void NotReadyTest::fourAreIgnoredAndTheFifthIsAccepted()
{
    QFETCH(Chip, chip);
    QFETCH(Chip, otherChip);
    stage().server.answer(versionPath(chip, DeviceModel::R2), ScriptedHttpServer::version("1.3.0"));
    panel().pretendAwaitingNewVersions(true);
    panel().pretendDeviceVersion(otherChip, u"1.2.3"_s); // a plan step would have all it needs
    panel().pretendServerVersion(otherChip, u"1.2.3"_s);
    panel().pretendServerVersion(chip, u"1.2.3"_s);
    panel().pretendDeviceVersion(chip, u"1.0.0"_s);

    for (int i = 1; i <= 4; ++i) {
        stage().log.clear();
        receive(chip, kNotReady);
        QCOMPARE(lines().mid(1), QStringList({countLine(chip, i), kIgnored}));
        QCOMPARE(panel().notReadyReplies(), i);
        QCOMPARE(panel().deviceVersion(chip), u"1.0.0"_s);
        QVERIFY(panel().awaitsNewVersions());
        QCOMPARE(stage().server.paths(), QStringList());
    }
    stage().log.clear();
    receive(chip, kNotReady);
    QCOMPARE(panel().deviceVersion(chip), u"0.0.0"_s);
    QCOMPARE(panel().notReadyReplies(), 0);
    QCOMPARE(lines().mid(1, 4),
             QStringList({countLine(chip, 5), kAccepted, deviceLine(chip, u"0.0.0"_s),
                          remoteLine(chip, u"1.3.0"_s)}));
    QCOMPARE(stage().server.paths(), QStringList(versionPath(chip, DeviceModel::R2)));
}

void NotReadyTest::chipsShareTheCount()
{
    panel().pretendAwaitingNewVersions(true);
    for (int i = 0; i < 2; ++i) {
        receive(Chip::Pc, kNotReady);
        receive(Chip::Otg, kNotReady);
    }
    QCOMPARE(panel().notReadyReplies(), 4);
    QVERIFY(panel().deviceVersion(Chip::Pc).isEmpty());

    receive(Chip::Otg, kNotReady);
    QVERIFY(stage().log.contains(countLine(Chip::Otg, 5)));
    QCOMPARE(panel().deviceVersion(Chip::Otg), u"0.0.0"_s);
    QVERIFY(panel().deviceVersion(Chip::Pc).isEmpty());
    QVERIFY(panel().awaitsNewVersions()); // the PC version is still to come, and is counted from the start
    QCOMPARE(panel().notReadyReplies(), 0);
}

void NotReadyTest::anotherVersionResetsTheCount_data()
{
    addRows();
}

void NotReadyTest::anotherVersionResetsTheCount()
{
    QFETCH(Chip, chip);
    QFETCH(Chip, otherChip);
    panel().pretendAwaitingNewVersions(true);
    for (int i = 0; i < 4; ++i)
        receive(otherChip, kNotReady);

    receive(chip, {1, 0, 0});
    QCOMPARE(panel().notReadyReplies(), 0);
    QCOMPARE(panel().deviceVersion(chip), u"1.0.0"_s);
    receive(otherChip, kNotReady); // the first of five again
    QCOMPARE(panel().notReadyReplies(), 1);
    QVERIFY(panel().deviceVersion(otherChip).isEmpty());
}

void NotReadyTest::endOfTheWaitResetsTheCount()
{
    for (const Chip chip : {Chip::Pc, Chip::Otg})
        stage().server.answer(versionPath(chip, DeviceModel::R2), ScriptedHttpServer::version("1.2.3"));
    panel().pretendAwaitingNewVersions(true);
    receive(Chip::Pc, {1, 2, 3});
    panel().pretendNotReadyReplies(2);

    receive(Chip::Otg, {1, 2, 3});
    QVERIFY(!panel().awaitsNewVersions());
    QCOMPARE(panel().notReadyReplies(), 0);
}

// A bricked device: the plan then sees 0.0.0 and wants it upgraded.
void NotReadyTest::acceptedNotReadyEndsTheWait()
{
    for (const Chip chip : {Chip::Pc, Chip::Otg})
        stage().server.answer(versionPath(chip, DeviceModel::R2), ScriptedHttpServer::version("1.2.3"));
    panel().pretendAwaitingNewVersions(true);
    receive(Chip::Pc, {1, 2, 3});
    for (int i = 0; i < 5; ++i)
        receive(Chip::Otg, kNotReady);

    QVERIFY(!panel().awaitsNewVersions());
    QCOMPARE(panel().plan(), UpgradePlan::OtgOnly);
    QCOMPARE(stage().log.count(u"[VersionRead] 升级后等待期，跳过UI刷新  PC: 1.2.3  OTG: 0.0.0"_s), 1);
}

QUILLON_TEST(NotReadyTest)
#include "tst_not_ready.moc"
