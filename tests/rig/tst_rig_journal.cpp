// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Journal.h"
#include "tests/support/TestProgram.h"

#include <QSignalSpy>
#include <QTest>

using namespace rig;

class RigJournalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatHappensIsToldAndKeptInOrder();
    void onlyTheLastThingsAreKept();
};

void RigJournalTest::whatHappensIsToldAndKeptInOrder()
{
    Journal journal;
    QStringList told;
    connect(&journal, &Journal::recorded, this,
            [&told](const JournalEntry &entry) { told.append(entry.text); });
    journal.record(QStringLiteral("device"), QStringLiteral("first"));
    journal.record(QStringLiteral("server"), QStringLiteral("second"));
    QCOMPARE(told, (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
    QCOMPARE(journal.entries().size(), 2);
    QCOMPARE(journal.entries().first().source, QStringLiteral("device"));
    QCOMPARE(journal.entries().last().text, QStringLiteral("second"));
    QVERIFY(journal.entries().first().at <= journal.entries().last().at);
}

// A rig that runs for days is not to grow.
void RigJournalTest::onlyTheLastThingsAreKept()
{
    Journal journal;
    for (qsizetype number = 0; number < 3 * Journal::kKept; ++number)
        journal.record(QStringLiteral("device"), QString::number(number));
    QCOMPARE(journal.entries().size(), Journal::kKept);
    QCOMPARE(journal.entries().first().text, QString::number(2 * Journal::kKept));
    QCOMPARE(journal.entries().last().text, QString::number(3 * Journal::kKept - 1));
}

QUILLON_TEST_CORE(RigJournalTest)
#include "tst_rig_journal.moc"
