// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Fault.h"
#include "rig/Scenario.h"
#include "rig/ScenarioGrammar.h"
#include "rig/ScenarioWords.h"
#include "rig/ScreenRecognizer.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace rig;
using namespace std::chrono_literals;

class RigScenarioTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineIsSplitIntoWords_data();
    void aLineIsSplitIntoWords();
    void durations_data();
    void durations();
    void times_data();
    void times();
    void sizes_data();
    void sizes();
    void theGrammarHoldsTogether_data();
    void theGrammarHoldsTogether();
    void aStatementIsUnderstood_data();
    void aStatementIsUnderstood();
    void aStatementMayBeOnlyTried();
    void linesAreCountedThroughCommentsAndBlanks();
    void aMistakeIsNamedWithItsPlace_data();
    void aMistakeIsNamedWithItsPlace();
    void aFileMayBeCalledAnything();
    void aFileThatCannotBeReadIsNamed();
    void windowsLineEndsAreFine();
    void everyShippedScenarioIsSound_data();
    void everyShippedScenarioIsSound();
    void everyFaultCanBeArmed();
    void damagedFilesAreRefusedOrUnderstood();
    void theGuideListsEveryFaultAndEveryStatement();
};

void RigScenarioTest::aLineIsSplitIntoWords_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("error");
    const QString fine;
    QTest::newRow("blank") << QStringLiteral("  \t ") << QStringList() << fine;
    QTest::newRow("words") << QStringLiteral(" plug\t pc ")
                           << QStringList{QStringLiteral("plug"), QStringLiteral("pc")} << fine;
    QTest::newRow("comment") << QStringLiteral("# plug pc") << QStringList() << fine;
    QTest::newRow("comment behind words")
        << QStringLiteral("plug pc # now") << QStringList{QStringLiteral("plug"), QStringLiteral("pc")}
        << fine;
    QTest::newRow("a sharp inside a word")
        << QStringLiteral("a#b") << QStringList{QStringLiteral("a#b")} << fine;
    QTest::newRow("quoted") << QStringLiteral("say \"two words\"")
                            << QStringList{QStringLiteral("say"), QStringLiteral("two words")} << fine;
    QTest::newRow("quoted nothing") << QStringLiteral("say \"\"")
                                    << QStringList{QStringLiteral("say"), QString()} << fine;
    QTest::newRow("quoted sharp") << QStringLiteral("\"# no\"") << QStringList{QStringLiteral("# no")}
                                  << fine;
    QTest::newRow("escapes") << QStringLiteral(R"("a\"b\\c\nd")") << QStringList{QStringLiteral("a\"b\\c\nd")}
                             << fine;
    QTest::newRow("open quote") << QStringLiteral("say \"two") << QStringList{QStringLiteral("say")}
                                << QStringLiteral("a quote is not closed");
    QTest::newRow("quote escaped at the end")
        << QStringLiteral(R"("two\")") << QStringList() << QStringLiteral("a quote is not closed");
    QTest::newRow("backslash at the end")
        << QStringLiteral("\"two\\") << QStringList() << QStringLiteral("a quote is not closed");
}

void RigScenarioTest::aLineIsSplitIntoWords()
{
    QFETCH(QString, line);
    const LineWords split = splitLine(line);
    QTEST(split.words, "words");
    QTEST(split.error, "error");
}

void RigScenarioTest::durations_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("milliseconds") << QStringLiteral("150ms") << 150;
    QTest::newRow("seconds") << QStringLiteral("10s") << 10000;
    QTest::newRow("minutes") << QStringLiteral("2m") << 120000;
    QTest::newRow("none") << QStringLiteral("0s") << 0;
    for (const char *wrong : {"", "10", "s", "1.5s", "-1s", "10 s", "10h", "10S", "9999999s", "1s2"})
        QTest::newRow(wrong) << QString::fromLatin1(wrong) << -1;
}

void RigScenarioTest::durations()
{
    QFETCH(QString, word);
    QTEST(int(durationFrom(word).value_or(-1ms).count()), "milliseconds");
}

void RigScenarioTest::times_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("count");
    QTest::newRow("once") << QStringLiteral("once") << 1;
    QTest::newRow("1x") << QStringLiteral("1x") << 1;
    QTest::newRow("12x") << QStringLiteral("12x") << 12;
    for (const char *wrong : {"", "x", "0x", "-1x", "3", "twice", "999999x"})
        QTest::newRow(wrong) << QString::fromLatin1(wrong) << -1;
}

void RigScenarioTest::times()
{
    QFETCH(QString, word);
    QTEST(timesFrom(word).value_or(-1), "count");
}

void RigScenarioTest::sizes_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("kibibytes") << QStringLiteral("512KiB") << qint64(524288);
    QTest::newRow("mebibytes") << QStringLiteral("3MiB") << qint64(3145728);
    QTest::newRow("none") << QStringLiteral("0KiB") << qint64(0);
    QTest::newRow("more than a number of 32 bits") << QStringLiteral("4096MiB") << qint64(4294967296);
    for (const char *wrong : {"", "8", "MiB", "1.5MiB", "-1MiB", "8 MiB", "8GiB", "8mib", "9999999KiB"})
        QTest::newRow(wrong) << QString::fromLatin1(wrong) << qint64(-1);
}

void RigScenarioTest::sizes()
{
    QFETCH(QString, word);
    QTEST(sizeFrom(word).value_or(-1), "bytes");
}

void RigScenarioTest::theGrammarHoldsTogether_data()
{
    QTest::addColumn<int>("form");
    for (int form = 0; form < grammar().size(); ++form)
        QTest::newRow(grammar().at(form).pattern) << form;
}

void RigScenarioTest::theGrammarHoldsTogether()
{
    QFETCH(int, form);
    const QList<FormPart> parts = partsOf(grammar().at(form));
    QVERIFY(!parts.first().gap);
    QVERIFY(qstrlen(grammar().at(form).help) > 0);
    for (const FormPart &part : parts) {
        QVERIFY2(!part.gap || wordKind(part.word), qPrintable(part.word));
        QVERIFY2(part.gap || (!part.optional && !part.repeated), qPrintable(part.word));
        QVERIFY2(!part.repeated || &part == &parts.last(), qPrintable(part.word));
    }
}

void RigScenarioTest::aStatementIsUnderstood_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("words"); // separated by "|"
    const auto row = [](const char *line, const char *pattern, const char *words) {
        QTest::newRow(line) << QString::fromUtf8(line) << QString::fromLatin1(pattern)
                            << QString::fromUtf8(words);
    };
    row("device R2 pc 1.1.1 otg bricked", "device <model> pc <firmware> otg <firmware>", "R2|1.1.1|bricked");
    row("plug otg", "plug <chip>", "otg");
    row("fault tool-fails", "fault <fault> [<chip>] [<requests>] [<times>]", "tool-fails|||");
    row("fault tool-fails otg once", "fault <fault> [<chip>] [<requests>] [<times>]", "tool-fails|otg||once");
    row("fault server-404 downloads", "fault <fault> [<chip>] [<requests>] [<times>]",
        "server-404||downloads|");
    row("fault server-404 pc queries 3x", "fault <fault> [<chip>] [<requests>] [<times>]",
        "server-404|pc|queries|3x");
    row("clear faults", "clear faults", "");
    row("clear tool-fails", "clear <fault>", "tool-fails");
    row("wait screen flashing", "wait screen <screen> [<duration>]", "flashing|");
    row("wait screen flashing 5s", "wait screen <screen> [<duration>]", "flashing|5s");
    row("wait tool ended", "wait tool ended [<duration>]", "");
    row("say \"hello there\"", "say <text>", "hello there");
    row("expect text m_doneLb 升级完成", "expect text <name> <text>", "m_doneLb|升级完成");
    row("expect flash pc served", "expect flash <chip> <contents>", "pc|served");
    row("expect flash otg 1.2.0", "expect flash <chip> <contents>", "otg|1.2.0");
    row("expect downloads none", "expect downloads none", "");
    row("expect downloads pc otg pc", "expect downloads <chip>...", "pc otg pc");
    row("expect tool pid 000e", "expect tool pid <pid>", "000e");
    row("expect tool pid 00ff already-in-dfu", "expect tool pid <pid> already-in-dfu", "00ff");
    row("expect pc-tool 6s after otg-image within 150ms",
        "expect <event> <duration> after <event> within <duration>", "pc-tool|6s|otg-image|150ms");
    row("weigh 100", "weigh <name>", "100");
    row("expect growth since 100 resident 8MiB heap 512KiB handles 2 threads 1 objects 0",
        "expect growth since <name> resident <size> heap <size> handles <count> threads <count> objects "
        "<count>",
        "100|8MiB|512KiB|2|1|0");
}

void RigScenarioTest::aStatementIsUnderstood()
{
    QFETCH(QString, line);
    QString error;
    const auto scenario = Scenario::parse(line, QStringLiteral("x.scn"), &error);
    QVERIFY2(scenario, qPrintable(error));
    QCOMPARE(scenario->statements.size(), 1);
    const Statement statement = scenario->statements.first();
    QTEST(QString::fromLatin1(grammar().at(statement.form).pattern), "pattern");
    QTEST(statement.words.join(u'|'), "words");
    QCOMPARE(statement.text, line);
}

void RigScenarioTest::aStatementMayBeOnlyTried()
{
    QString error;
    const auto scenario = Scenario::parse(QStringLiteral("wait bar 10 5s\ntry wait bar 10 5s"),
                                          QStringLiteral("x.scn"), &error);
    QVERIFY2(scenario, qPrintable(error));
    const Statement &plain = scenario->statements.at(0);
    const Statement &tried = scenario->statements.at(1);
    QCOMPARE(tried.form, plain.form);
    QCOMPARE(tried.words, plain.words);
    QVERIFY(tried.attempt && !plain.attempt);
}

void RigScenarioTest::linesAreCountedThroughCommentsAndBlanks()
{
    QString error;
    const auto scenario = Scenario::parse(QStringLiteral("# one\n\nplug pc\n   \n  unplug pc  # five\n"),
                                          QStringLiteral("x.scn"), &error);
    QVERIFY2(scenario, qPrintable(error));
    QCOMPARE(scenario->statements.size(), 2);
    QCOMPARE(scenario->statements.at(0).line, 3);
    QCOMPARE(scenario->statements.at(1).line, 5);
}

void RigScenarioTest::aMistakeIsNamedWithItsPlace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const char *text, const char *message) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(message);
    };
    row("an unknown statement", "plug pc\nplugg pc", "x.scn:2: no such statement: \"plugg\"");
    row("a capital letter", "Plug pc", "x.scn:1: no such statement: \"Plug\"");
    row("a wrong word", "plug usb", "x.scn:1: expected \"pc\" or \"otg\", found \"usb\"");
    row("a missing word", "plug", "x.scn:1: expected \"pc\" or \"otg\", found the end of the line");
    row("a word too many", "\n\nplug pc now", "x.scn:3: expected the end of the line, found \"now\"");
    row("an unknown model", "model R3", "x.scn:1: expected \"R1\" or \"R2\", found \"R3\"");
    row("a version of two parts", "server pc 1.2 otg 1.2.0",
        "x.scn:1: expected a version such as 1.2.0, found \"1.2\"");
    row("a version part too large", "server pc 1.2.65536 otg 1.2.0",
        "x.scn:1: expected a version such as 1.2.0, found \"1.2.65536\"");
    row("a word of the form missing", "device R2 1.1.1", "x.scn:1: expected \"pc\", found \"1.1.1\"");
    row("an unknown fault", "fault tool-stal", "x.scn:1: expected the name of a fault, found \"tool-stal\"");
    row("a wrong word behind optional ones", "fault tool-fails otg twice",
        "x.scn:1: expected \"queries\" or \"downloads\" or \"once\" or a count such as 3x or the end of the "
        "line, found \"twice\"");
    row("optional words in another order", "fault tool-fails once otg",
        "x.scn:1: expected the end of the line, found \"otg\"");
    row("a duration without its unit", "pause 2",
        "x.scn:1: expected a duration such as 10s or 500ms, found \"2\"");
    row("a size without its unit", "expect growth since 1 resident 8 heap 1MiB handles 0 threads 0 objects 0",
        "x.scn:1: expected a size such as 512KiB or 2MiB, found \"8\"");
    row("a percentage too large", "expect bar 101",
        "x.scn:1: expected a number from 0 to 100, found \"101\"");
    row("a negative percentage", "expect bar -1", "x.scn:1: expected a number from 0 to 100, found \"-1\"");
    row("a product ID in capitals", "expect tool pid 00FF",
        "x.scn:1: expected a product ID of four hexadecimal digits such as 000e, found \"00FF\"");
    row("a flash that cannot be", "expect flash pc full",
        "x.scn:1: expected a version such as 1.2.0 or \"served\" or \"empty\" or \"partial\" or \"damaged\", "
        "found \"full\"");
    row("none of several forms", "expect flashed all",
        "x.scn:1: expected \"none\" or \"pc\" or \"otg\", found \"all\"");
    row("an unknown event", "expect pc-click 6s after otg-image within 1s",
        "x.scn:1: expected \"screen\" or \"bar\" or \"text\" or \"visible\" or \"hidden\" or \"device\" or "
        "\"flash\" or "
        "\"downloads\" or \"queries\" or \"flashed\" or \"tool\" or \"tools\" or an event (pc- or otg- and "
        "image, tool, "
        "ended, appeared or read) or \"nothing\" or \"growth\", found \"pc-click\"");
    row("an unknown screen", "expect screen welcome",
        "x.scn:1: expected a screen (searching, up-to-date, upgrade-available, too-old, recovering, "
        "waiting-pc, "
        "waiting-otg, starting, flashing, completed, failure), found \"welcome\"");
    row("a picture outside its folder", "picture ../x",
        "x.scn:1: expected a name of letters, digits, \"-\" and \"_\", found \"../x\"");
    row("nothing tried", "try", "x.scn:1: expected a statement, found the end of the line");
    row("a try of no statement", "try try plug pc", "x.scn:1: no such statement: \"try\"");
    row("a mistake in what is tried", "try plug usb", "x.scn:1: expected \"pc\" or \"otg\", found \"usb\"");
    row("an open quote", "say \"hello", "x.scn:1: a quote is not closed");
    row("characters of a terminal", "plug \x1b[2J\xe2\x80\xae",
        "x.scn:1: expected \"pc\" or \"otg\", found \"?[2J?\"");
    row("a word as long as a page", qPrintable(QString(3000, u'a')),
        "x.scn:1: no such statement: \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...\"");
    row("a line feed behind a duration", "pause \"2s\\n\"",
        "x.scn:1: expected a duration such as 10s or 500ms, found \"2s?\"");
    row("nothing at all", "", "x.scn: holds no statement");
    row("only comments", "# a\n# b\n", "x.scn: holds no statement");
}

void RigScenarioTest::aMistakeIsNamedWithItsPlace()
{
    QFETCH(QString, text);
    QString error;
    QVERIFY(!Scenario::parse(text, QStringLiteral("x.scn"), &error));
    QTEST(error, "message");
}

void RigScenarioTest::aFileMayBeCalledAnything()
{
    QString error;
    QVERIFY(!Scenario::parse(QStringLiteral("plugg"), QStringLiteral("%1%2%3.scn"), &error));
    QCOMPARE(error, QStringLiteral("%1%2%3.scn:1: no such statement: \"plugg\""));
}

void RigScenarioTest::aFileThatCannotBeReadIsNamed()
{
    QString error;
    QVERIFY(!Scenario::load(QStringLiteral("/nowhere/a.scn"), &error));
    QVERIFY2(error.startsWith(QStringLiteral("/nowhere/a.scn: ")), qPrintable(error));
    const QTemporaryDir folder;
    QVERIFY(!Scenario::load(folder.path(), &error));
    QVERIFY2(error.startsWith(folder.path()), qPrintable(error));
}

void RigScenarioTest::windowsLineEndsAreFine()
{
    QString error;
    const auto scenario
        = Scenario::parse(QStringLiteral("plug pc\r\nunplug pc\r\n"), QStringLiteral("x.scn"), &error);
    QVERIFY2(scenario, qPrintable(error));
    QCOMPARE(scenario->statements.size(), 2);
}

void RigScenarioTest::everyShippedScenarioIsSound_data()
{
    QTest::addColumn<QString>("file");
    const QDir folder(QStringLiteral(QUILLON_SCENARIO_DIR));
    for (const QString &name : folder.entryList({QStringLiteral("*.scn")}, QDir::Files))
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

void RigScenarioTest::everyShippedScenarioIsSound()
{
    QFETCH(QString, file);
    QString error;
    QVERIFY2(Scenario::load(file, &error), qPrintable(error));
    QFile source(file);
    QVERIFY(source.open(QIODevice::ReadOnly));
    QVERIFY2(source.readLine().startsWith("# "), "it begins with what it shows");
}

void RigScenarioTest::everyFaultCanBeArmed()
{
    for (const FaultInfo &info : faultTable()) {
        QString error;
        QVERIFY2(
            Scenario::parse(QStringLiteral("fault ") + nameOf(info.fault), QStringLiteral("x.scn"), &error),
            qPrintable(error));
    }
}

// A real scenario shortened at many places, and with a byte changed there, is either read or refused with
// a message.
void RigScenarioTest::damagedFilesAreRefusedOrUnderstood()
{
    QFile source(QStringLiteral(QUILLON_SCENARIO_DIR "/demo.scn"));
    QVERIFY(source.open(QIODevice::ReadOnly));
    const QByteArray text = source.readAll();
    for (qsizetype at = 0; at < text.size(); at += 5) {
        QByteArray changed = text;
        changed[at] = char(changed.at(at) ^ 0x55);
        for (const QByteArray &damaged : {text.left(at), changed}) {
            QString error;
            const bool understood
                = Scenario::parse(QString::fromUtf8(damaged), QStringLiteral("x.scn"), &error).has_value();
            QVERIFY(understood != error.startsWith(QStringLiteral("x.scn:")));
        }
    }
}

void RigScenarioTest::theGuideListsEveryFaultAndEveryStatement()
{
    QFile guide(QStringLiteral(RIG_GUIDE));
    QVERIFY(guide.open(QIODevice::ReadOnly));
    const QByteArray text = guide.readAll();
    for (const FaultInfo &info : faultTable()) {
        const QString row = QStringLiteral("| `%1` | %2 | %3 |")
                                .arg(nameOf(info.fault), nameOf(info.place), QString::fromUtf8(info.english));
        QVERIFY2(text.contains(row.toUtf8()), qPrintable(row));
    }
    for (const StatementForm &form : grammar()) {
        const QString row = QStringLiteral("| `%1` | %2 |")
                                .arg(QString::fromLatin1(form.pattern), QString::fromUtf8(form.help));
        QVERIFY2(text.contains(row.toUtf8()), qPrintable(row));
    }
    for (const QString &screen : screenNames())
        QVERIFY2(text.contains(QByteArray('`' + screen.toLatin1() + '`')), qPrintable(screen));
}

QUILLON_TEST_CORE(RigScenarioTest)
#include "tst_rig_scenario.moc"
