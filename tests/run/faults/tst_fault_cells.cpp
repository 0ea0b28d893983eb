// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Fault.h"
#include "rig/Scenario.h"
#include "tests/run/faults/CellScenario.h"
#include "tests/support/TestProgram.h"

#include <QSet>
#include <QTest>

using namespace rig;

class FaultCellsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFaultMeetsEveryPlanOnBothModels();
    void everyCellCanBePlayed_data();
    void everyCellCanBePlayed();
    void aFaultThatEndsTheFirstHalfIsLeftForTheSecond();
};

void FaultCellsTest::everyFaultMeetsEveryPlanOnBothModels()
{
    constexpr int kPlans = 3;
    QSet<QString> names;
    for (const faults::Cell &cell : faults::allCells())
        names.insert(nameOf(cell));
    QCOMPARE(names.size(), faultTable().size() * kPlans * modelNames().size());
    QVERIFY(names.contains(QStringLiteral("tool-fails-otg-only-r2")));
}

void FaultCellsTest::everyCellCanBePlayed_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("text");
    for (const faults::Cell &cell : faults::allCells())
        QTest::newRow(qPrintable(nameOf(cell))) << rig::nameOf(cell.fault) << scenarioOf(cell);
}

// The fault is there at the click, and a fresh panel comes once it is gone.
void FaultCellsTest::everyCellCanBePlayed()
{
    QFETCH(QString, fault);
    QFETCH(QString, text);
    QString error;
    QVERIFY2(Scenario::parse(text, QStringLiteral("x.scn"), &error), qPrintable(error + u'\n' + text));
    const qsizetype click = text.indexOf(QStringLiteral("\nclick upgrade"));
    const qsizetype armed = text.lastIndexOf(QStringLiteral("\nfault ") + fault, click);
    const qsizetype passed = text.lastIndexOf(QStringLiteral("\nclear faults"), click);
    QVERIFY2(armed >= 0 && click > armed && armed > passed, qPrintable(text));
    const qsizetype cleared = text.indexOf(QStringLiteral("\nclear faults"), click);
    const qsizetype fresh = text.indexOf(QStringLiteral("\ncreate panel"), click);
    QVERIFY2(cleared > click && fresh > cleared, qPrintable(text));
}

void FaultCellsTest::aFaultThatEndsTheFirstHalfIsLeftForTheSecond()
{
    const auto armedIn = [](faults::Plan plan) {
        return faults::scenarioOf({Fault::ToolFails, plan, Model::R1}).section(u'\n', 4, 4);
    };
    QCOMPARE(armedIn(faults::Plan::Both), QStringLiteral("fault tool-fails otg"));
    QCOMPARE(armedIn(faults::Plan::PcOnly), QStringLiteral("fault tool-fails"));
}

QUILLON_TEST_CORE(FaultCellsTest)
#include "tst_fault_cells.moc"
