// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// When a percentage means that the flashing tool hangs, and where the bar stands then.
#include "flash/ProgressScale.h"
#include "flash/StallRule.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace QuillonFirmwareUpgrade;

using ProgressScale::Part;
using StallRule::Verdict;

Q_DECLARE_METATYPE(StallRule::Verdict)
Q_DECLARE_METATYPE(ProgressScale::Part)

class ProgressRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void verdicts_data();
    void verdicts();
    void aMomentThatIsNotKnownIsNoStall();
    void theBarsScale_data();
    void theBarsScale();
};

void ProgressRulesTest::verdicts_data()
{
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("percent");
    QTest::addColumn<int>("msecsLater");
    QTest::addColumn<Verdict>("verdict");
    QTest::newRow("0 % does not arm the detector")
        << StallRule::kNothingYet << 0 << 60000 << Verdict::Standing;
    QTest::newRow("1 % does") << StallRule::kNothingYet << 1 << 0 << Verdict::News;
    QTest::newRow("more") << 41 << 42 << 60000 << Verdict::News;
    QTest::newRow("less") << 42 << 41 << 60000 << Verdict::News;
    QTest::newRow("the same at once") << 42 << 42 << 0 << Verdict::Standing;
    QTest::newRow("the same for almost three seconds") << 42 << 42 << 2999 << Verdict::Standing;
    QTest::newRow("the same for three seconds") << 42 << 42 << 3000 << Verdict::Stalled;
    QTest::newRow("all written, and the tool does not quit") << 100 << 100 << 3000 << Verdict::Stalled;
    QTest::newRow("the clock was put back") << 42 << 42 << -5000 << Verdict::Standing;
}

void ProgressRulesTest::verdicts()
{
    QFETCH(int, last);
    QFETCH(int, percent);
    QFETCH(int, msecsLater);
    const QDateTime since = QDateTime::fromMSecsSinceEpoch(1'000'000);
    QTEST(StallRule::judge({last, since}, percent, since.addMSecs(msecsLater)), "verdict");
}

void ProgressRulesTest::aMomentThatIsNotKnownIsNoStall()
{
    const QDateTime now = QDateTime::currentDateTime();
    QCOMPARE(StallRule::judge({42, QDateTime()}, 42, now), Verdict::Standing);
}

void ProgressRulesTest::theBarsScale_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<Part>("part");
    QTest::addColumn<int>("shown");
    QTest::newRow("a run over one chip") << 43 << Part::WholeRun << 43;
    QTest::newRow("the PC half begins") << 0 << Part::PcHalf << 0;
    QTest::newRow("the PC half, rounded down") << 43 << Part::PcHalf << 21;
    QTest::newRow("the PC half is done") << 100 << Part::PcHalf << 50;
    QTest::newRow("the OTG half begins") << 0 << Part::OtgHalf << 50;
    QTest::newRow("all is done") << 100 << Part::OtgHalf << 100;
}

void ProgressRulesTest::theBarsScale()
{
    QFETCH(int, percent);
    QFETCH(Part, part);
    QTEST(ProgressScale::shown(percent, part), "shown");
}

QUILLON_TEST_CORE(ProgressRulesTest)
#include "tst_progress_rules.moc"
