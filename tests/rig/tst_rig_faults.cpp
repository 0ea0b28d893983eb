// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FaultBoard.h"
#include "tests/support/TestProgram.h"

#include <QSet>
#include <QSignalSpy>
#include <QTest>

using namespace rig;

class RigFaultsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTableHasEveryFaultOnceAndInOrder();
    void everyFaultIsDescribedInBothLanguages();
    void aNameLeadsBackToItsFault();
    void anUnknownNameIsNoFault();
    void aFaultStrikesWithinItsScope_data();
    void aFaultStrikesWithinItsScope();
    void aCountedFaultIsUsedUp();
    void onlyStrikesInScopeAreCounted();
    void armingAgainReplacesTheScope();
    void strikesOfAPlaceLeaveOtherPlacesAlone();
    void everyChangeIsAnnounced();
};

void RigFaultsTest::theTableHasEveryFaultOnceAndInOrder()
{
    const QList<FaultInfo> &table = faultTable();
    QCOMPARE(table.size(), qsizetype(Fault::DeviceDamagedTransfer) + 1);
    QSet<QString> names;
    for (int row = 0; row < table.size(); ++row) {
        QCOMPARE(int(table.at(row).fault), row);
        names.insert(nameOf(table.at(row).fault));
    }
    QCOMPARE(names.size(), table.size());
}

void RigFaultsTest::everyFaultIsDescribedInBothLanguages()
{
    for (const FaultInfo &info : faultTable()) {
        const QString english = QString::fromUtf8(info.english);
        const QString chinese = QString::fromUtf8(info.chinese);
        QVERIFY2(english.size() > 10 && !english.contains(u'\n'), info.name);
        QVERIFY2(std::any_of(chinese.begin(), chinese.end(),
                             [](QChar c) { return c.script() == QChar::Script_Han; }),
                 info.name);
        QVERIFY2(nameOf(info.fault).startsWith(nameOf(info.place).section(u' ', 0, 0)), info.name);
    }
}

void RigFaultsTest::aNameLeadsBackToItsFault()
{
    for (const FaultInfo &info : faultTable())
        QVERIFY2(faultNamed(nameOf(info.fault)) == info.fault, info.name);
}

void RigFaultsTest::anUnknownNameIsNoFault()
{
    QVERIFY(!faultNamed(u""));
    QVERIFY(!faultNamed(u"tool-missin"));
    QVERIFY(!faultNamed(u"Tool-Missing"));
}

void RigFaultsTest::aFaultStrikesWithinItsScope_data()
{
    QTest::addColumn<FaultScope>("scope");
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<RequestKind>("request");
    QTest::addColumn<bool>("strikes");
    const auto query = RequestKind::VersionQuery;
    const auto download = RequestKind::Download;
    QTest::newRow("everywhere") << FaultScope{} << Chip::Otg << download << true;
    QTest::newRow("this chip") << FaultScope{Chip::Pc, {}, 0} << Chip::Pc << query << true;
    QTest::newRow("the other chip") << FaultScope{Chip::Pc, {}, 0} << Chip::Otg << query << false;
    QTest::newRow("this kind of request") << FaultScope{{}, download, 0} << Chip::Pc << download << true;
    QTest::newRow("the other kind") << FaultScope{{}, download, 0} << Chip::Pc << query << false;
    QTest::newRow("chip fits, kind does not")
        << FaultScope{Chip::Pc, download, 0} << Chip::Pc << query << false;
    QTest::newRow("both fit") << FaultScope{Chip::Otg, query, 3} << Chip::Otg << query << true;
}

void RigFaultsTest::aFaultStrikesWithinItsScope()
{
    QFETCH(FaultScope, scope);
    QFETCH(Chip, chip);
    QFETCH(RequestKind, request);
    FaultBoard board;
    QVERIFY(!board.strikes(Fault::ServerSlow, chip, request));
    board.arm(Fault::ServerSlow, scope);
    QTEST(board.strikes(Fault::ServerSlow, chip, request), "strikes");
    QVERIFY(!board.strikes(Fault::ServerLate, chip, request));
}

void RigFaultsTest::aCountedFaultIsUsedUp()
{
    FaultBoard board;
    board.arm(Fault::DeviceZeroVersions, {{}, {}, 2});
    QVERIFY(board.strikes(Fault::DeviceZeroVersions));
    QVERIFY(board.isArmed(Fault::DeviceZeroVersions));
    QVERIFY(board.strikes(Fault::DeviceZeroVersions));
    QVERIFY(!board.isArmed(Fault::DeviceZeroVersions));
    QVERIFY(!board.strikes(Fault::DeviceZeroVersions));
}

void RigFaultsTest::onlyStrikesInScopeAreCounted()
{
    FaultBoard board;
    board.arm(Fault::ToolFails, {Chip::Otg, {}, 1});
    QVERIFY(!board.strikes(Fault::ToolFails, Chip::Pc));
    QVERIFY(!board.strikes(Fault::ToolFails, Chip::Pc));
    QVERIFY(board.strikes(Fault::ToolFails, Chip::Otg));
    QVERIFY(!board.isArmed(Fault::ToolFails));
}

void RigFaultsTest::armingAgainReplacesTheScope()
{
    FaultBoard board;
    board.arm(Fault::ToolFails, {Chip::Otg, {}, 1});
    board.arm(Fault::ToolFails, {Chip::Pc, {}, 0});
    QVERIFY(!board.strikes(Fault::ToolFails, Chip::Otg));
    QVERIFY(board.strikes(Fault::ToolFails, Chip::Pc));
    QVERIFY(board.strikes(Fault::ToolFails, Chip::Pc));
}

void RigFaultsTest::strikesOfAPlaceLeaveOtherPlacesAlone()
{
    FaultBoard board;
    board.arm(Fault::ToolStallsAt42, {{}, {}, 1});
    board.arm(Fault::ToolChatty, {Chip::Otg, {}, 1});
    board.arm(Fault::ToolIgnoresTerminate, {{}, {}, 1});
    board.arm(Fault::DeviceSilent, {{}, {}, 1});
    QCOMPARE(board.strikesOf(FaultPlace::Tool, Chip::Pc),
             (QList{Fault::ToolStallsAt42, Fault::ToolIgnoresTerminate}));
    QCOMPARE(board.armed(), (QList{Fault::ToolChatty, Fault::DeviceSilent}));
}

void RigFaultsTest::everyChangeIsAnnounced()
{
    FaultBoard board;
    QSignalSpy changes(&board, &FaultBoard::changed);
    board.arm(Fault::ToolFails, {{}, {}, 1});
    QCOMPARE(changes.size(), 1);
    board.clear(Fault::ToolChatty);
    QCOMPARE(changes.size(), 1);
    board.strikes(Fault::ToolFails);
    QCOMPARE(changes.size(), 2);
    board.clearAll();
    QCOMPARE(changes.size(), 3);
}

QUILLON_TEST_CORE(RigFaultsTest)
#include "tst_rig_faults.moc"
