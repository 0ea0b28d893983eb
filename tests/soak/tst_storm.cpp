// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Fault.h"
#include "rig/Scenario.h"
#include "rig/ScenarioGrammar.h"
#include "tests/soak/Dice.h"
#include "tests/soak/Storm.h"
#include "tests/support/TestProgram.h"

#include <QSet>
#include <QTest>

using namespace rig;

namespace {

// Enough of them for every statement and every fault.
constexpr quint32 kStorms = 400;

// Whatever stands between the two lines that frame it.
QString midstOf(const QString &storm)
{
    const qsizetype begin = storm.indexOf(QLatin1StringView(soak::kStormBegins));
    const qsizetype end = storm.indexOf(QLatin1StringView(soak::kStormEnds));
    return begin < 0 || end < begin ? QString() : storm.mid(begin, end - begin);
}

QList<Statement> statementsOf(const QString &text)
{
    QString error;
    const auto scenario = Scenario::parse(text, QStringLiteral("x.scn"), &error);
    if (!scenario)
        qCritical().noquote() << error << '\n' << text;
    return scenario ? scenario->statements : QList<Statement>();
}

QString patternOf(const Statement &statement)
{
    return QString::fromLatin1(grammar().at(statement.form).pattern);
}

} // namespace

class StormTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theDiceFallAlikeEverywhere();
    void aSeedIsAScenario();
    void nothingInAStormCanFailByItself();
    void everyStatementComesUp();
    void everyFaultComesUp();

private:
    QList<QList<Statement>> m_midsts;
};

// Every storm can be played.
void StormTest::initTestCase()
{
    m_midsts.reserve(kStorms);
    for (quint32 seed = 0; seed < kStorms; ++seed) {
        m_midsts.append(statementsOf(midstOf(soak::storm(seed))));
        QVERIFY2(!m_midsts.last().isEmpty(), qPrintable(QString::number(seed)));
    }
    QVERIFY2(!statementsOf(soak::storm(0)).isEmpty(), "what stands before and after is sound as well");
}

// The standard names the 10000th number of this engine with this seed.
void StormTest::theDiceFallAlikeEverywhere()
{
    soak::Dice dice(5489);
    for (int throws = 1; throws < 10000; ++throws)
        dice.below(2);
    QCOMPARE(dice.below(1000000), int(4123659995U % 1000000U));
    for (int throws = 0; throws < 1000; ++throws) {
        const int number = dice.between(3, 5);
        QVERIFY(number >= 3 && number <= 5);
    }
}

void StormTest::aSeedIsAScenario()
{
    QCOMPARE(soak::storm(4711), soak::storm(4711));
    QVERIFY(midstOf(soak::storm(4711)) != midstOf(soak::storm(4712)));
}

// What waits, looks or presses a button may find something else than it wants.
void StormTest::nothingInAStormCanFailByItself()
{
    const QSet<QString> uncertain{QStringLiteral("wait"), QStringLiteral("hold"), QStringLiteral("expect"),
                                  QStringLiteral("click"), QStringLiteral("dismiss")};
    for (const QList<Statement> &midst : std::as_const(m_midsts)) {
        for (const Statement &statement : midst) {
            const QString verb = patternOf(statement).section(QLatin1Char(' '), 0, 0);
            QVERIFY2(statement.attempt || !uncertain.contains(verb), qPrintable(statement.text));
        }
    }
}

void StormTest::everyStatementComesUp()
{
    // These judge the whole storm, or a whole day, or reach out of the simulated world.
    QSet<QString> seen{
        QStringLiteral("timeout <duration>"),
        QStringLiteral("mark"),
        QStringLiteral("expect nothing left [<duration>]"),
        QStringLiteral("weigh <name>"),
        QStringLiteral("run <text> [<duration>]"),
        QStringLiteral("expect growth since <name> resident <size> heap <size> handles <count> "
                       "threads <count> objects <count>")};
    for (const QList<Statement> &midst : std::as_const(m_midsts)) {
        for (const Statement &statement : midst)
            seen.insert(patternOf(statement));
    }
    for (const StatementForm &form : grammar())
        QVERIFY2(seen.contains(QString::fromLatin1(form.pattern)), form.pattern);
}

void StormTest::everyFaultComesUp()
{
    QSet<QString> armed;
    for (const QList<Statement> &midst : std::as_const(m_midsts)) {
        for (const Statement &statement : midst) {
            if (patternOf(statement).startsWith(QStringLiteral("fault ")))
                armed.insert(statement.words.first());
        }
    }
    for (const FaultInfo &info : faultTable())
        QVERIFY2(armed.contains(nameOf(info.fault)), info.name);
}

QUILLON_TEST_CORE(StormTest)
#include "tst_storm.moc"
