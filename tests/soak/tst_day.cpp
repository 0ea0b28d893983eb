// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Scenario.h"
#include "rig/ScenarioGrammar.h"
#include "tests/soak/Day.h"
#include "tests/support/TestProgram.h"

#include <QSet>
#include <QTest>

using namespace rig;

namespace {

constexpr int kUpgrades = 100;
constexpr int kKinds = 10;
constexpr quint32 kDays = 20;

QList<Statement> statementsOf(const QString &text)
{
    QString error;
    const auto scenario = Scenario::parse(text, QStringLiteral("x.scn"), &error);
    if (!scenario)
        qCritical().noquote() << error;
    return scenario ? scenario->statements : QList<Statement>();
}

// What fills the first gap of every such statement, in order.
QStringList wordsOf(const QList<Statement> &day, const char *pattern)
{
    QStringList words;
    for (const Statement &statement : day) {
        if (qstrcmp(grammar().at(statement.form).pattern, pattern) == 0)
            words.append(statement.words.value(0));
    }
    return words;
}

} // namespace

class DayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyDayCanBePlayed();
    void aSeedIsADay();
    void everyUpgradeIsJudged();
    void everyKindComesUpBeforeTheProcessIsWeighed();
    void theWeightsAreComparedWithThoseAfterATenth();
    void itIsOnePanelsDay();
    void modelsAndLanguagesChange();
};

void DayTest::everyDayCanBePlayed()
{
    for (quint32 seed = 0; seed < kDays; ++seed) {
        const QString day = soak::day(kUpgrades, seed);
        QVERIFY2(!statementsOf(day).isEmpty(), qPrintable(QString::number(seed)));
        QVERIFY2(!day.contains(u'<'), "a gap was left");
    }
    QVERIFY(!statementsOf(soak::day(1, 1)).isEmpty());
}

void DayTest::aSeedIsADay()
{
    QCOMPARE(soak::day(kUpgrades, 7), soak::day(kUpgrades, 7));
    QVERIFY(soak::day(kUpgrades, 7) != soak::day(kUpgrades, 8));
}

void DayTest::everyUpgradeIsJudged()
{
    const QString day = soak::day(kUpgrades, 1);
    QCOMPARE(day.count(QStringLiteral("\nexpect flash pc served\n")), kUpgrades);
    QCOMPARE(day.count(QStringLiteral("\nexpect flash otg served\n")), kUpgrades);
}

// What is made at the first use of something and kept for ever is no growth.
void DayTest::everyKindComesUpBeforeTheProcessIsWeighed()
{
    for (quint32 seed = 0; seed < kDays; ++seed) {
        QSet<QString> kinds;
        const QStringList upgrades = wordsOf(statementsOf(soak::day(kUpgrades, seed)), "say <text>");
        for (const QString &upgrade : upgrades.first(kKinds))
            kinds.insert(upgrade.section(QStringLiteral(": "), 1));
        QCOMPARE(kinds.size(), kKinds);
    }
}

void DayTest::theWeightsAreComparedWithThoseAfterATenth()
{
    const auto compared = [](int upgrades) {
        const QList<Statement> day = statementsOf(soak::day(upgrades, 1));
        return wordsOf(day, grammar().at(day.last().form).pattern).value(0);
    };
    QCOMPARE(compared(1000), QStringLiteral("100"));
    QCOMPARE(compared(12), QString::number(kKinds));
    for (const int upgrades : {12, 100, 1000}) {
        const QStringList weighed = wordsOf(statementsOf(soak::day(upgrades, 1)), "weigh <name>");
        QVERIFY(weighed.contains(compared(upgrades)));
        QCOMPARE(weighed.last(), QString::number(upgrades));
    }
}

void DayTest::itIsOnePanelsDay()
{
    const QString day = soak::day(kUpgrades, 1);
    QVERIFY(!day.contains(QStringLiteral("panel")));
}

void DayTest::modelsAndLanguagesChange()
{
    const QList<Statement> day = statementsOf(soak::day(kUpgrades, 1));
    for (const QString &model : {QStringLiteral("R1"), QStringLiteral("R2")})
        QVERIFY(wordsOf(day, "device <model> pc <firmware> otg <firmware>").count(model) > kUpgrades / 4);
    for (const QString &language : {QStringLiteral("zh"), QStringLiteral("en")})
        QVERIFY(wordsOf(day, "language <language>").count(language) > kUpgrades / 4);
}

QUILLON_TEST_CORE(DayTest)
#include "tst_day.moc"
