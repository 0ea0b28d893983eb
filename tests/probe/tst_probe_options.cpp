// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The command line: what is refused, and how.
#include "tests/probe/ProbeRun.h"
#include "tests/support/TestProgram.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class ProbeOptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aWrongCommandLineIsRefused_data();
    void aWrongCommandLineIsRefused();
    void aFileThatIsNoTraceIsRefused();
    void aRecordThatCannotBeWrittenIsRefused();
    void helpNamesEveryCommandOptionAndStatus();
};

void ProbeOptionsTest::aWrongCommandLineIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const char *arguments, const char *message) {
        QTest::newRow(name) << QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts)
                            << QString::fromLatin1(message);
    };
    row("nothing", "", "what to do? One of list, versions, watch, read, trace; --help explains them");
    row("a command that is none", "flash",
        "there is no command \"flash\"; there is list, versions, watch, read, trace");
    row("an option that is none", "list --colour", "Unknown option 'colour'");
    row("a word too many", "versions R2", "unexpected argument \"R2\"");
    row("read without an address", "read", "read takes an address and, if you like, a count");
    row("read with too much", "read 1 2 3", "read takes an address and, if you like, a count");
    row("an address in words", "read version", "\"version\" is no address: 0 to 65535, or 0x0 to 0xffff");
    row("hexadecimal without its sign", "read 100b", "\"100b\" is no address: 0 to 65535, or 0x0 to 0xffff");
    row("the sign alone", "read 0x", "\"0x\" is no address: 0 to 65535, or 0x0 to 0xffff");
    row("a sign behind the sign", "read 0x-1", "\"0x-1\" is no address: 0 to 65535, or 0x0 to 0xffff");
    row("an address beyond the last", "read 0x10000",
        "\"0x10000\" is no address: 0 to 65535, or 0x0 to 0xffff");
    row("a count of none", "read 11 0", "\"0\" is no count: there are 1 to 65525 registers from there on");
    row("a count beyond the last register", "read 0xfffe 3",
        "\"3\" is no count: there are 1 to 2 registers from there on");
    row("a time without end", "watch --for ever", "--for takes a number of seconds, not \"ever\"");
    row("no time at all", "watch --for 0", "--for takes a number of seconds, not \"0\"");
    row("a time that is no number", "watch --for nan", "--for takes a number of seconds, not \"nan\"");
    row("a time longer than a month", "watch --for 1e9", "--for takes a number of seconds, not \"1e9\"");
    row("a time for what ends by itself", "list --for 3", "--for goes with watch and trace");
    row("listening where nothing is asked", "watch --listen", "--listen goes with trace");
    row("a recording without a name", "list --record=", "--record takes the name of a file");
    row("a replay without a name", "list --replay=", "--replay takes the name of a file");
    QFile nowhere(QStringLiteral("/nowhere/x.trace"));
    QVERIFY(!nowhere.open(QIODevice::ReadOnly));
    row("a trace that is not there", "list --replay /nowhere/x.trace",
        qPrintable(u"/nowhere/x.trace: " + nowhere.errorString()));
}

void ProbeOptionsTest::aWrongCommandLineIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const ProbeRun run = ProbeRun::with(arguments);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.errors, QString(u"quillon-probe: " + message + u'\n'));
}

void ProbeOptionsTest::aFileThatIsNoTraceIsRefused()
{
    const ProbeRun run = ProbeRun::onTrace(u"not-a-trace"_s, {u"versions"_s});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.errors,
             QString(u"quillon-probe: " + ProbeRun::traceFile(u"not-a-trace"_s)
                     + u":4: no byte of two hexadecimal digits: \"1ff\"\n"));
}

void ProbeOptionsTest::aRecordThatCannotBeWrittenIsRefused()
{
    const ProbeRun run = ProbeRun::onTrace(u"r2"_s, {u"list"_s, u"--record"_s, u"/nowhere/x.trace"_s});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QString());
    QVERIFY2(run.errors.startsWith(u"quillon-probe: /nowhere/x.trace: "_s), qPrintable(run.errors));
}

void ProbeOptionsTest::helpNamesEveryCommandOptionAndStatus()
{
    const ProbeRun run = ProbeRun::with({u"--help"_s});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.errors, QString());
    for (const char *word : {"COMMAND [options]", "list", "versions", "watch", "read ADDRESS [COUNT]",
                             "trace", "--json", "--for", "--listen", "--record", "--replay", "Exit status"})
        QVERIFY2(run.output.contains(QLatin1StringView(word)), word);
}

QUILLON_TEST_CORE(ProbeOptionsTest)
#include "tst_probe_options.moc"
