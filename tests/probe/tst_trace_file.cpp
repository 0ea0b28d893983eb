// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The text of a trace: what is read, what is refused, and that what is written is read again.
#include "probe/trace/Trace.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace probe;
using namespace std::chrono_literals;
using Kind = TraceEvent::Kind;

namespace {
const QByteArray kFirst = "quillon-trace 1\n";
const QByteArray kPlugged = kFirst + "0.000 plug 1 352f 000e\n";

QByteArray plugs(int count)
{
    QByteArray lines;
    for (int device = 1; device <= count; ++device)
        lines += "0.000 plug " + QByteArray::number(device) + " 352f 000e\n";
    return lines;
}
} // namespace

class TraceFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineIsAnEvent_data();
    void aLineIsAnEvent();
    void spellingsThatMeanTheSame_data();
    void spellingsThatMeanTheSame();
    void whatIsNoTraceIsRefusedWithItsLine_data();
    void whatIsNoTraceIsRefusedWithItsLine();
    void aWrittenTraceIsReadAgain();
    void aFileMayBeCalledAnything();
    void filesThatCannotBeRead_data();
    void filesThatCannotBeRead();
    void aFileAsLargeAsAllowedIsRead();
};

void TraceFileTest::aLineIsAnEvent_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("kind");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QByteArray>("report");
    const auto row
        = [](const char *name, const QByteArray &line, Kind kind, qint64 time,
             const QByteArray &report = {}) { QTest::newRow(name) << line << int(kind) << time << report; };
    row("unplug", "3.250 unplug 1", Kind::Unplug, 3250);
    row("open", "0.000 open 1", Kind::Open, 0);
    row("denied", "0.001 denied 1", Kind::Denied, 1);
    row("refused", "9999999.999 refused 1", Kind::Refused, 9999999999);
    row("a report sent", "0.010 out 1 51 c4 09", Kind::Out, 10, QByteArray::fromHex("51c409"));
    row("a report received", "0.010 in 1 51 C4", Kind::In, 10, QByteArray::fromHex("51c4"));
    row("a run of bytes", "0.010 in 1 51 00*3 ff", Kind::In, 10, QByteArray::fromHex("51000000ff"));
    row("the longest report", "0.010 in 1 51 00*4095", Kind::In, 10, '\x51' + QByteArray(4095, '\0'));
}

void TraceFileTest::aLineIsAnEvent()
{
    QFETCH(QByteArray, line);
    QString error;
    const auto trace = Trace::parse(kPlugged + line, u"x"_s, &error);
    QVERIFY2(trace, qPrintable(error));
    QCOMPARE(trace->events.size(), 2);
    const TraceEvent &plug = trace->events.first();
    QCOMPARE(plug.kind, Kind::Plug);
    QCOMPARE(plug.device, 1);
    QCOMPARE(plug.vendorId, 0x352F);
    QCOMPARE(plug.productId, 0x000E);
    const TraceEvent &event = trace->events.last();
    QTEST(int(event.kind), "kind");
    QTEST(qint64(event.time.count()), "milliseconds");
    QTEST(event.report, "report");
    QCOMPARE(event.device, 1);
}

void TraceFileTest::spellingsThatMeanTheSame_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("comments and empty lines") << "# from a customer\n\n" + kFirst
            + "  # more\n0.000 plug 1 352f 000e\n"
              "0.001 in 1 51 00 00\n";
    QTest::newRow("line ends of another system") << QByteArray("quillon-trace 1\r\n0.000 plug 1 352f 000e\r\n"
                                                               "0.001 in 1 51 00 00\r\n");
    QTest::newRow("blanks and tabulators") << kFirst + " 0.000\tplug  1 352f\t000e \n0.001 in 1   51 00 00\n";
    QTest::newRow("capitals") << kFirst + "0.000 plug 1 352F 000E\n0.001 in 1 51 00 00\n";
    QTest::newRow("no line feed at the end") << kPlugged + "0.001 in 1 51 00*2";
}

void TraceFileTest::spellingsThatMeanTheSame()
{
    QFETCH(QByteArray, text);
    QString error;
    const auto trace = Trace::parse(text, u"x"_s, &error);
    QVERIFY2(trace, qPrintable(error));
    QCOMPARE(trace->events.size(), 2);
    QCOMPARE(trace->events.first().productId, 0x000E);
    QCOMPARE(trace->events.last().report, QByteArray::fromHex("510000"));
}

void TraceFileTest::whatIsNoTraceIsRefusedWithItsLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const QByteArray &text, const char *message) {
        QTest::newRow(name) << text << QString::fromLatin1(message);
    };
    row("nothing", "", "x: empty");
    row("only comments", "# a\n\n", "x: empty");
    row("no first line", "0.000 plug 1 352f 000e\n", "x:1: a trace begins with \"quillon-trace 1\"");
    row("a newer version", "quillon-trace 2\n",
        "x:1: a trace of version \"2\"; this program reads version 1");
    row("a version that looks like a gap", "quillon-trace %1\n",
        "x:1: a trace of version \"%1\"; this program reads version 1");
    row("no time", kFirst + "plug 1 352f 000e\n", "x:2: no time in seconds with three decimals: \"plug\"");
    row("a time of whole seconds", kFirst + "1 plug 1 352f 000e\n",
        "x:2: no time in seconds with three decimals: \"1\"");
    row("a time with two decimals", kFirst + "1.00 plug 1 352f 000e\n",
        "x:2: no time in seconds with three decimals: \"1.00\"");
    row("a time below zero", kFirst + "-1.000 plug 1 352f 000e\n",
        "x:2: no time in seconds with three decimals: \"-1.000\"");
    row("a time without end", kFirst + "99999999999999999999.000 plug 1 352f 000e\n",
        "x:2: no time in seconds with three decimals: \"99999999999999999999.000\"");
    row("a time that goes backwards", kFirst + "1.000 plug 1 352f 000e\n# between\n0.999 unplug 1\n",
        "x:4: the time goes backwards");
    row("an unknown word", kFirst + "0.000 eject 1\n", "x:2: no such event: \"eject\"");
    row("a word in capitals", kFirst + "0.000 PLUG 1 352f 000e\n", "x:2: no such event: \"PLUG\"");
    row("half a line", kPlugged + "0.000 open\n",
        "x:3: a line has a time, a word and the number of a device");
    row("device 0", kFirst + "0.000 plug 0 352f 000e\n", "x:2: no number of a device: \"0\"");
    row("a device that is no number", kFirst + "0.000 plug one 352f 000e\n",
        "x:2: no number of a device: \"one\"");
    row("a number beyond all", kFirst + "0.000 plug 4294967297 352f 000e\n",
        "x:2: no number of a device: \"4294967297\"");
    row("plug without a product", kFirst + "0.000 plug 1 352f\n",
        "x:2: \"plug\" takes a device, a vendor ID and a product ID");
    row("an ID of three digits", kFirst + "0.000 plug 1 352f 00e\n",
        "x:2: no ID of four hexadecimal digits: \"00e\"");
    row("an ID with a sign", kFirst + "0.000 plug 1 352f +00e\n",
        "x:2: no ID of four hexadecimal digits: \"+00e\"");
    row("a device plugged in twice", kPlugged + "1.000 plug 1 352f 000e\n",
        "x:3: device 1 was plugged in before: give it a new number");
    row("a number used again", kPlugged + "1.000 unplug 1\n2.000 plug 1 352f 000e\n",
        "x:4: device 1 was plugged in before: give it a new number");
    row("a report of a device that is not there", kPlugged + "1.000 in 2 51\n",
        "x:3: device 2 is not plugged in");
    row("a report of a device that has left", kPlugged + "1.000 unplug 1\n1.000 in 1 51\n",
        "x:4: device 1 is not plugged in");
    row("a word too many", kPlugged + "1.000 unplug 1 now\n", "x:3: a word too many: \"now\"");
    row("a report without a byte", kPlugged + "1.000 in 1\n", "x:3: a report without a byte");
    row("half a byte", kPlugged + "1.000 in 1 5\n", "x:3: no byte of two hexadecimal digits: \"5\"");
    row("a byte and a half", kPlugged + "1.000 in 1 51c\n",
        "x:3: no byte of two hexadecimal digits: \"51c\"");
    row("no hexadecimal digit", kPlugged + "1.000 in 1 5g\n",
        "x:3: no byte of two hexadecimal digits: \"5g\"");
    row("a run without a count", kPlugged + "1.000 in 1 00*\n",
        "x:3: no byte of two hexadecimal digits: \"00*\"");
    row("a run of none", kPlugged + "1.000 in 1 00*0\n", "x:3: no byte of two hexadecimal digits: \"00*0\"");
    row("a run beyond all", kPlugged + "1.000 in 1 00*4097\n",
        "x:3: no byte of two hexadecimal digits: \"00*4097\"");
    row("a report too long", kPlugged + "1.000 in 1 51 00*4096\n", "x:3: a report of more than 4096 bytes");
    row("a line too long", kPlugged + QByteArray(16 * kKiB + 1, ' ') + "\n", "x:3: longer than 16384 bytes");
    row("bytes of a terminal", kPlugged + "1.000 in 1 \x1b[2J\xff\n",
        "x:3: no byte of two hexadecimal digits: \"?[2J?\"");
    row("a null byte", kPlugged + QByteArray("1.000 in 1 \0\n", 13),
        "x:3: no byte of two hexadecimal digits: \"?\"");
    row("a word as long as a page", kPlugged + "1.000 " + QByteArray(3000, 'a') + " 1\n",
        "x:3: no such event: \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...\"");
    row("more reports than fit", kPlugged + QByteArray("1.000 in 1 00*4096\n").repeated(16 * kKiB + 1),
        "x:16387: more than 64 MiB of reports");
    row("more events than fit", kPlugged + QByteArray("1.000 in 1 51\n").repeated(1'000'000),
        "x:1000002: more than 1000000 events");
    row("more devices than fit", kFirst + plugs(1001), "x:1002: more than 1000 devices");
    row("a file too large", kFirst + QByteArray(16 * kMiB, '\n'), "x: larger than 16 MiB");
}

void TraceFileTest::whatIsNoTraceIsRefusedWithItsLine()
{
    QFETCH(QByteArray, text);
    QString error;
    QVERIFY(!Trace::parse(text, u"x"_s, &error));
    QTEST(error, "message");
}

void TraceFileTest::aWrittenTraceIsReadAgain()
{
    const QByteArray bytes = QByteArray::fromHex("51c4000000000102020202ff");
    const QList<TraceEvent> events{
        {0ms, Kind::Plug, 1, 0x352F, 0x001F, {}},
        {5ms, Kind::Open, 1, 0, 0, {}},
        {1234567ms, Kind::Out, 1, 0, 0, bytes},
        {1234568ms, Kind::In, 1, 0, 0, bytes.leftJustified(65, '\0')},
        {1300000ms, Kind::Unplug, 1, 0, 0, {}},
    };
    QByteArray text = Trace::firstLine();
    for (const TraceEvent &event : events)
        text += Trace::lineOf(event);
    QCOMPARE(text.split('\n').at(3), QByteArray("1234.567 out 1 51 c4 00*4 01 02*4 ff"));

    QString error;
    const auto trace = Trace::parse(text, u"x"_s, &error);
    QVERIFY2(trace, qPrintable(error));
    QCOMPARE(trace->events.size(), events.size());
    for (qsizetype i = 0; i < events.size(); ++i) {
        const TraceEvent &read = trace->events.at(i);
        const TraceEvent &written = events.at(i);
        QCOMPARE(read.time, written.time);
        QCOMPARE(read.kind, written.kind);
        QCOMPARE(read.device, written.device);
        QCOMPARE(read.vendorId, written.vendorId);
        QCOMPARE(read.productId, written.productId);
        QCOMPARE(read.report, written.report);
    }
}

void TraceFileTest::aFileMayBeCalledAnything()
{
    QString error;
    QVERIFY(!Trace::parse("quillon-trace 2\n", u"%1%2%3.trace"_s, &error));
    QVERIFY2(error.startsWith(u"%1%2%3.trace:1: "_s), qPrintable(error));
}

void TraceFileTest::filesThatCannotBeRead_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("one that is not there") << u"/nowhere/x.trace"_s;
    QTest::newRow("a folder") << u"/"_s;
    QTest::newRow("one without end") << u"/dev/zero"_s;
}

void TraceFileTest::filesThatCannotBeRead()
{
    QFETCH(QString, file);
    QString error;
    QVERIFY(!Trace::load(file, &error));
    QVERIFY2(error.startsWith(file + u": "), qPrintable(error));
}

void TraceFileTest::aFileAsLargeAsAllowedIsRead()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(u"x.trace"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(kFirst.leftJustified(Trace::kLargestFile, '\n')), Trace::kLargestFile);
    file.close();
    QString error;
    QVERIFY2(Trace::load(file.fileName(), &error), qPrintable(error));
    QVERIFY(file.open(QIODevice::Append));
    file.write("\n");
    file.close();
    QVERIFY(!Trace::load(file.fileName(), &error));
    QCOMPARE(error, file.fileName() + u": larger than 16 MiB"_s);
}

QUILLON_TEST_CORE(TraceFileTest)
#include "tst_trace_file.moc"
