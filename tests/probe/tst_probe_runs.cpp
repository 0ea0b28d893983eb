// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// quillon-probe as a program, on devices that traces play.
#include "tests/probe/ProbeRun.h"
#include "tests/support/TestProgram.h"

#include "probe/trace/Trace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

using namespace Qt::StringLiterals;

namespace {

// Where a rule grants the permission for good, the command is told.
#ifdef Q_OS_LINUX
constexpr char kHint[]
    = "A device is plugged in that you have no permission to open. This command grants it for good:";
#else
constexpr char kHint[] = "";
#endif

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ');
}

QJsonObject document(const ProbeRun &run)
{
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(run.output.toUtf8(), &error).object();
    if (error.error != QJsonParseError::NoError)
        qWarning("%s in: %s", qPrintable(error.errorString()), qPrintable(run.output));
    return object;
}

QList<QJsonObject> objects(const ProbeRun &run)
{
    QList<QJsonObject> list;
    for (const QString &line : run.output.split(u'\n', Qt::SkipEmptyParts))
        list.append(QJsonDocument::fromJson(line.toUtf8()).object());
    return list;
}

} // namespace

class ProbeRunsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commands_data();
    void commands();
    void listInJson();
    void versionsInJson();
    void aVersionThatIsNotAnsweredIsNull();
    void readInJson();
    void failuresAreDocumentsToo();
    void watchTellsOfEachPlug();
    void watchInJson();
    void traceShowsBothDirections();
    void traceInJson();
    void traceMayListenOnly();
    void statusOfATraceWithoutADevice_data();
    void statusOfATraceWithoutADevice();
    void watchEndsWhenInterrupted();
    void aRecordingOfAReplayPlaysTheSame();
};

void ProbeRunsTest::commands_data()
{
    QTest::addColumn<QString>("trace");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors"); // its first line
    const auto row = [](const char *name, const char *trace, const char *arguments, int status,
                        const char *output, const char *errors = "") {
        QTest::newRow(name) << QString::fromLatin1(trace) << words(arguments) << status
                            << QString::fromLatin1(output) << QString::fromLatin1(errors);
    };
    row("list", "r2", "list", 0,
        "000e  R2, PC interface\n"
        "      \\\\?\\hid#vid_352f&pid_000e#replay1#{4d1e55b2-f16f-11cf-88cb-001111000030}\n");
    row("versions", "r2", "versions", 0,
        "device       000e  R2, PC interface\nmode         normal\nPC version   1.1.1\nOTG version  1.4.2\n");
    row("one register in hexadecimal", "r2", "read 0x1008", 0, "1008  0000  0\n");
    row("one register in decimal", "r2", "read 4104", 0, "1008  0000  0\n");
    row("a run of registers", "r2", "read 0x10 3", 0, "0010  0001  1\n0011  0004  4\n0012  0002  2\n");
    row("versions of an R1", "r1", "versions", 0,
        "device       0001  R1, PC interface\nmode         normal\nPC version   1.2.0\nOTG version  0.9.9\n");
    row("a device in upgrade mode", "upgrade-mode", "versions", 0,
        "device       000e  R2, PC interface\nmode         upgrade\nPC version   no answer\nOTG version  no "
        "answer\n");
    row("a register that is not answered", "r2", "read 0x20", 1, "",
        "quillon-probe: the device does not answer");
    row("a silent device", "silent", "versions", 1, "", "quillon-probe: the device does not answer");
    row("no device: list", "empty", "list", 1, "", "quillon-probe: no device is plugged in");
    row("no device: versions", "empty", "versions", 1, "", "quillon-probe: no device is plugged in");
    row("no device: read", "empty", "read 11", 1, "", "quillon-probe: no device is plugged in");
    row("a boot loader only: list", "boot-loader", "list", 0,
        "00ff  R2, PC chip in its boot loader\n"
        "      \\\\?\\hid#vid_352f&pid_00ff#replay1#{4d1e55b2-f16f-11cf-88cb-001111000030}\n");
    row("a boot loader only: versions", "boot-loader", "versions", 1, "",
        "quillon-probe: no PC interface is plugged in, only that answers; \"list\" shows what is");
    row("a busy device", "busy", "versions", 1, "",
        "quillon-probe: the device cannot be opened: it is busy or not ready");
    row("a device that settles", "settling", "read 0x1008", 0, "1008  0000  0\n");
    row("permission that comes late", "permitted-late", "read 0x1008", 0, "1008  0000  0\n");
    row("no permission: versions", "denied", "versions", 3, "",
        "quillon-probe: no permission to open the device");
    row("no permission: list", "denied", "list", 3,
        "000e  R2, PC interface (no permission to open it)\n"
        "      \\\\?\\hid#vid_352f&pid_000e#replay1#{4d1e55b2-f16f-11cf-88cb-001111000030}\n",
        kHint);
    row("pulled out in the middle", "pulled", "read 11 3", 1, "",
        "quillon-probe: the device does not answer");
}

void ProbeRunsTest::commands()
{
    QFETCH(QString, trace);
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    const ProbeRun run = ProbeRun::onTrace(trace, arguments);
    QCOMPARE(run.status, status);
    QTEST(run.output, "output");
    QTEST(run.errors.section(u'\n', 0, 0), "errors");
#ifdef Q_OS_LINUX
    QCOMPARE(run.errors.contains(u"sudo install"_s), status == 3);
#endif
}

void ProbeRunsTest::listInJson()
{
    const QJsonArray devices
        = document(ProbeRun::onTrace(u"denied"_s, words("list --json"))).value(u"devices"_s).toArray();
    QCOMPARE(devices.size(), 1);
    const QJsonObject device = devices.first().toObject();
    QCOMPARE(device.value(u"productId"_s), u"000e"_s);
    QCOMPARE(device.value(u"model"_s), u"R2"_s);
    QCOMPARE(device.value(u"role"_s), u"PC interface"_s);
    QCOMPARE(device.value(u"mayBeOpened"_s), false);
    QVERIFY(device.value(u"path"_s).toString().contains(u"pid_000e"_s));
}

void ProbeRunsTest::versionsInJson()
{
    const QJsonObject object = document(ProbeRun::onTrace(u"r2"_s, words("versions --json")));
    QCOMPARE(object.value(u"mode"_s), u"normal"_s);
    QCOMPARE(object.value(u"pcVersion"_s), u"1.1.1"_s);
    QCOMPARE(object.value(u"otgVersion"_s), u"1.4.2"_s);
    QCOMPARE(object.value(u"device"_s).toObject().value(u"productId"_s), u"000e"_s);
}

void ProbeRunsTest::aVersionThatIsNotAnsweredIsNull()
{
    const QJsonObject object = document(ProbeRun::onTrace(u"upgrade-mode"_s, words("versions --json")));
    QCOMPARE(object.value(u"mode"_s), u"upgrade"_s);
    QVERIFY(object.value(u"pcVersion"_s).isNull());
    QVERIFY(object.value(u"otgVersion"_s).isNull());
}

void ProbeRunsTest::readInJson()
{
    const QJsonArray registers
        = document(ProbeRun::onTrace(u"r2"_s, words("read 0x10 3 --json"))).value(u"registers"_s).toArray();
    QCOMPARE(registers.size(), 3);
    QCOMPARE(registers.at(1).toObject().value(u"address"_s), 0x11);
    QCOMPARE(registers.at(1).toObject().value(u"value"_s), 4);
}

void ProbeRunsTest::failuresAreDocumentsToo()
{
    const ProbeRun run = ProbeRun::onTrace(u"empty"_s, words("versions --json"));
    QCOMPARE(run.status, 1);
    QCOMPARE(document(run).value(u"error"_s), u"no device is plugged in"_s);
}

void ProbeRunsTest::watchTellsOfEachPlug()
{
    const ProbeRun run = ProbeRun::onTrace(u"replugged"_s, words("watch --for 3"));
    QCOMPARE(run.status, 0);
    QStringList lines;
    for (const QString &line : run.output.split(u'\n', Qt::SkipEmptyParts)) {
        static const QRegularExpression time(u"\\A[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\\.[0-9]{3}  "_s);
        QVERIFY2(time.match(line).hasMatch(), qPrintable(line));
        lines.append(line.section(u' ', 2));
    }
    QCOMPARE(lines,
             QStringList({u"000e  plugged in: R2, PC interface"_s, u"000e  pulled out"_s,
                          u"00ff  plugged in: R2, PC chip in its boot loader"_s}));
}

void ProbeRunsTest::watchInJson()
{
    const auto events = objects(ProbeRun::onTrace(u"replugged"_s, words("watch --for 3 --json")));
    QCOMPARE(events.size(), 3);
    QCOMPARE(events.at(0).value(u"event"_s), u"plug"_s);
    QCOMPARE(events.at(0).value(u"model"_s), u"R2"_s);
    QCOMPARE(events.at(1).value(u"event"_s), u"unplug"_s);
    QCOMPARE(events.at(1).value(u"device"_s), 1);
    QCOMPARE(events.at(2).value(u"device"_s), 2);
    for (const QJsonObject &event : events)
        QVERIFY(QDateTime::fromString(event.value(u"time"_s).toString(), Qt::ISODateWithMs).isValid());
}

void ProbeRunsTest::traceShowsBothDirections()
{
    const ProbeRun run = ProbeRun::onTrace(u"r2"_s, words("trace --for 3"));
    QCOMPARE(run.status, 0);
    for (const char *line :
         {"000e  plugged in: R2, PC interface\n", "000e  opened\n", "000e  to the device: read 1008 (mode)\n",
          "51 c4 09 00 00 04 08 10 17 ff and 55 zeros\n",
          "000e  from the device: 1008 (mode) = 0000, normal firmware\n",
          "000e  to the device: read 3 registers from 000b (PC version)\n",
          "000e  from the device: registers from 000b (PC version): 0001 0001 0001 = 1.1.1\n",
          "000e  to the device: read 3 registers from 0010 (OTG version)\n",
          "000e  from the device: registers from 0010 (OTG version): 0001 0004 0002 = 1.4.2\n"})
        QVERIFY2(run.output.contains(QLatin1StringView(line)),
                 qPrintable(QLatin1String(line) + u"in: "_s + run.output));
}

void ProbeRunsTest::traceInJson()
{
    const auto events = objects(ProbeRun::onTrace(u"r2"_s, words("trace --for 3 --json")));
    QStringList kinds;
    for (const QJsonObject &event : events)
        kinds.append(event.value(u"event"_s).toString());
    QCOMPARE(kinds.mid(0, 4), QStringList({u"plug"_s, u"open"_s, u"out"_s, u"in"_s}));
    QCOMPARE(events.at(3).value(u"words"_s), u"1008 (mode) = 0000, normal firmware"_s);
    QVERIFY(events.at(3).value(u"report"_s).toString().startsWith(u"51c40b0000040810"_s));
}

void ProbeRunsTest::traceMayListenOnly()
{
    const ProbeRun run = ProbeRun::onTrace(u"r2"_s, words("trace --for 3 --listen"));
    QCOMPARE(run.status, 0);
    QVERIFY(run.output.contains(u"opened"_s));
    QVERIFY(!run.output.contains(u"to the device"_s));
}

void ProbeRunsTest::statusOfATraceWithoutADevice_data()
{
    QTest::addColumn<QString>("trace");
    QTest::addColumn<int>("status");
    QTest::newRow("nothing there") << u"empty"_s << 1;
    QTest::newRow("busy") << u"busy"_s << 1;
    QTest::newRow("no permission") << u"denied"_s << 3;
}

void ProbeRunsTest::statusOfATraceWithoutADevice()
{
    QFETCH(QString, trace);
    QTEST(ProbeRun::onTrace(trace, words("trace --for 4")).status, "status");
}

void ProbeRunsTest::watchEndsWhenInterrupted()
{
#ifdef Q_OS_UNIX
    QProcess process;
    process.start(QStringLiteral(QUILLON_PROBE), {u"watch"_s, u"--replay"_s, ProbeRun::traceFile(u"r2"_s)});
    QVERIFY(process.waitForReadyRead()); // the line about the plug: it watches
    ::kill(pid_t(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
#else
    QSKIP("a process cannot be interrupted from here");
#endif
}

void ProbeRunsTest::aRecordingOfAReplayPlaysTheSame()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(u"again.trace"_s);
    const ProbeRun first = ProbeRun::onTrace(u"r2"_s, QStringList{u"versions"_s, u"--record"_s, file});
    QCOMPARE(first.status, 0);
    const ProbeRun second = ProbeRun::with({u"versions"_s, u"--replay"_s, file});
    QCOMPARE(second.status, 0);
    QCOMPARE(second.output, first.output);

    QString error;
    const auto trace = probe::Trace::load(file, &error);
    QVERIFY2(trace, qPrintable(error));
    QCOMPARE(trace->events.first().productId, 0x000E);
}

QUILLON_TEST_CORE(ProbeRunsTest)
#include "tst_probe_runs.moc"
