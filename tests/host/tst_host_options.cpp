// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/host/HostRun.h"
#include "tests/host/ScenarioFile.h"
#include "tests/support/TestProgram.h"

#include "rig/Fault.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class HostOptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aWrongCommandLineIsRefused_data();
    void aWrongCommandLineIsRefused();
    void helpNamesEveryOptionAndFault();
    void aFolderThatCannotBeMadeIsRefused();
    void withoutADisplayAWindowIsRefused();
    void withoutControllersTheDeviceIsNotPutOnUsb();
};

void HostOptionsTest::aWrongCommandLineIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    const QString scenario = QStringLiteral("--scenario");
    const QString simulate = QStringLiteral("--simulate");
    QTest::newRow("an option that is none") << QStringList{u"--colour"_s} << u"Unknown option 'colour'"_s;
    QTest::newRow("a word too many") << QStringList{u"--simulate"_s, u"R2"_s}
                                     << u"unexpected argument \"R2\""_s;
    QTest::newRow("a model that is none")
        << QStringList{u"--model"_s, u"R3"_s} << u"--model takes R1 or R2, not \"R3\""_s;
    QTest::newRow("an empty model") << QStringList{u"--model="_s} << u"--model takes R1 or R2, not \"\""_s;
    QTest::newRow("a model left out") << QStringList{u"--model"_s} << u"Missing value after '--model'"_s;
    QTest::newRow("a language that is none")
        << QStringList{u"--language"_s, u"de"_s} << u"--language takes zh or en, not \"de\""_s;
    QTest::newRow("a language in capitals")
        << QStringList{u"--language"_s, u"EN"_s} << u"--language takes zh or en, not \"EN\""_s;
    QTest::newRow("a value for a switch")
        << QStringList{u"--simulate=yes"_s} << u"Unexpected value after '--simulate'"_s;
    QTest::newRow("a fault that is none")
        << QStringList{simulate, u"--fault"_s, u"tool-sings"_s}
        << u"--fault: there is no fault \"tool-sings\"; --help lists them"_s;
    QTest::newRow("a fault on real hardware")
        << QStringList{u"--fault"_s, u"tool-missing"_s} << u"--fault needs --simulate"_s;
    QTest::newRow("real hardware on USB") << QStringList{u"--usb"_s} << u"--usb needs --simulate"_s;
    QTest::newRow("another server for real hardware")
        << QStringList{u"--server"_s, u"127.0.0.1:8080"_s} << u"--server needs --simulate"_s;
    for (const QString &place :
         {u""_s, u"127.0.0.1"_s, u"127.0.0.1:"_s, u":80"_s, u"http://127.0.0.1:80"_s, u"a:0"_s})
        QTest::addRow("the server \"%s\"", qPrintable(place))
            << QStringList{simulate, u"--server"_s, place} << u"--server takes a host and a port"_s;
    QTest::newRow("a scenario on real hardware")
        << QStringList{scenario, u"x.scn"_s} << u"--scenario needs --simulate"_s;
    QTest::newRow("headless with nothing to play")
        << QStringList{simulate, u"--headless"_s} << u"--headless needs --scenario"_s;
    QTest::newRow("a scenario without a name")
        << QStringList{simulate, u"--scenario="_s} << u"--scenario takes the name of a file"_s;
    QTest::newRow("a folder without a name")
        << QStringList{u"--record="_s} << u"--record takes the name of a folder"_s;
    QTest::newRow("a scenario that is not there")
        << QStringList{simulate, scenario, u"/nowhere/x.scn"_s} << u"/nowhere/x.scn: "_s;
    QTest::newRow("a scenario that is a folder") << QStringList{simulate, scenario, u"/"_s} << u"/: "_s;
}

void HostOptionsTest::aWrongCommandLineIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const HostRun run = HostRun::with(arguments);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QString());
    QVERIFY2(run.errors.startsWith(u"quillon-host: " + message), qPrintable(run.errors));
    QCOMPARE(run.errors.count(u'\n'), 1);
}

void HostOptionsTest::helpNamesEveryOptionAndFault()
{
    const HostRun run = HostRun::with({u"--help"_s});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.errors, QString());
    for (const char *option : {"--model", "--language", "--simulate", "--usb", "--server", "--scenario",
                               "--headless", "--record", "--fault"})
        QVERIFY2(run.output.contains(QLatin1StringView(option)), option);
    for (const rig::FaultInfo &fault : rig::faultTable())
        QVERIFY2(run.output.contains(QLatin1StringView(fault.name)), fault.name);
}

void HostOptionsTest::aFolderThatCannotBeMadeIsRefused()
{
    const ScenarioFile scenario("expect screen searching\n");
    const QString blocked = scenario.path + u"/pictures"_s;
    const HostRun run = HostRun::with(
        {u"--simulate"_s, u"--headless"_s, u"--scenario"_s, scenario.path, u"--record"_s, blocked});
    QCOMPARE(run.status, 2);
    QVERIFY2(run.errors.contains(u"cannot write to the folder " + blocked), qPrintable(run.errors));
}

void HostOptionsTest::withoutADisplayAWindowIsRefused()
{
#ifndef Q_OS_LINUX
    QSKIP("a display is always there");
#endif
    QProcessEnvironment bare = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        bare.remove(QLatin1StringView(variable));
    const HostRun run = HostRun::with({u"--simulate"_s}, bare);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errors, u"quillon-host: there is no display; play a scenario with --headless\n"_s);
}

void HostOptionsTest::withoutControllersTheDeviceIsNotPutOnUsb()
{
    if (QFile::exists(u"/sys/class/udc/dummy_udc.0"_s))
        QSKIP("this machine has USB device controllers");
    const ScenarioFile scenario("expect screen searching\n");
    const HostRun run
        = HostRun::with({u"--simulate"_s, u"--usb"_s, u"--headless"_s, u"--scenario"_s, scenario.path});
    QCOMPARE(run.status, 2);
    QVERIFY2(run.errors.contains(u"USB device"), qPrintable(run.errors));
}

QUILLON_TEST_CORE(HostOptionsTest)
#include "tst_host_options.moc"
