// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/host/HostRun.h"
#include "tests/support/Files.h"
#include "tests/support/TestProgram.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class HostScenariosTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMalformedScenarioIsRefused_data();
    void aMalformedScenarioIsRefused();
    void theEndOfAScenarioGivesTheStatus_data();
    void theEndOfAScenarioGivesTheStatus();
    void faultsOfTheCommandLineAreArmed();
    void theRealHomeIsLeftAlone();

private:
    QString write(const QByteArray &text);
    HostRun play(const QByteArray &text, const QStringList &options = {});

    QTemporaryDir m_folder;
};

QString HostScenariosTest::write(const QByteArray &text)
{
    const QString path = m_folder.filePath(u"x.scn"_s);
    writeFile(path, text);
    return path;
}

HostRun HostScenariosTest::play(const QByteArray &text, const QStringList &options)
{
    return HostRun::with(QStringList{u"--simulate"_s, u"--headless"_s, u"--scenario"_s, write(text)}
                         + options);
}

void HostScenariosTest::aMalformedScenarioIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("place");
    QTest::newRow("no such statement")
        << QByteArray("plug pc\ndance\n") << u":2: no such statement: \"dance\""_s;
    QTest::newRow("a chip that is none") << QByteArray("plug usb\n") << u":1: expected "_s;
    QTest::newRow("a screen that is none") << QByteArray("\n\nwait screen blue\n") << u":3: expected "_s;
    QTest::newRow("a fault that is none") << QByteArray("fault gremlin\n") << u":1: expected "_s;
    QTest::newRow("a line that breaks off") << QByteArray("plug\n") << u":1: expected "_s;
    QTest::newRow("a line that goes on")
        << QByteArray("plug pc now\n") << u":1: expected the end of the line"_s;
    QTest::newRow("a quote that stays open") << QByteArray("say \"hello\n") << u":1: "_s;
    QTest::newRow("nothing at all") << QByteArray() << u": holds no statement"_s;
    QTest::newRow("comments alone") << QByteArray("# plug pc\n") << u": holds no statement"_s;
    QTest::newRow("bytes that are no text") << QByteArray::fromHex("ff00fe80") << u":1: "_s;
}

void HostScenariosTest::aMalformedScenarioIsRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, place);
    const HostRun run = play(text);
    QCOMPARE(run.status, 2);
    const QString message = u"quillon-host: " + m_folder.filePath(u"x.scn"_s) + place;
    QVERIFY2(run.errors.startsWith(message), qPrintable(run.errors));
}

void HostScenariosTest::theEndOfAScenarioGivesTheStatus_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("verdict");
    QTest::newRow("all is as expected") << QByteArray("expect screen searching\n") << 0 << QString();
    QTest::newRow("the panel may be deleted")
        << QByteArray("destroy panel\npause 1s\ncreate panel\n") << 0 << QString();
    QTest::newRow("there may be a second panel")
        << QByteArray("panel second\ncreate panel\nexpect screen searching\npanel main\ndestroy panel\n"
                      "panel second\nexpect screen searching\n")
        << 0 << QString();
    QTest::newRow("a name is no panel yet") << QByteArray("panel second\nexpect screen searching\n") << 1
                                            << u"x.scn:2: expect screen searching: no panel"_s;
    QTest::newRow("all panels go") << QByteArray(
        "panel second\ncreate panel\ndestroy panels\nexpect screen searching\n")
                                   << 1 << u"x.scn:4: expect screen searching: no panel"_s;
    QTest::newRow("a panel goes by itself") << QByteArray(
        "destroy panel after 300ms\nexpect screen searching\npause 1s\nexpect screen searching\n")
                                            << 1 << u"x.scn:4: expect screen searching: no panel"_s;
    QTest::newRow("the panel may be closed") << QByteArray("click close\npause 1s\n") << 0 << QString();
    QTest::newRow("something else is seen") << QByteArray("pause 1s\nexpect screen completed\n") << 1
                                            << u"x.scn:2: expect screen completed: searching"_s;
    QTest::newRow("a wait is over") << QByteArray("wait screen completed 1s\n") << 1
                                    << u"x.scn:1: wait screen completed 1s: searching"_s;
}

void HostScenariosTest::theEndOfAScenarioGivesTheStatus()
{
    QFETCH(QByteArray, text);
    QFETCH(int, status);
    QFETCH(QString, verdict);
    const HostRun run = play(text);
    QCOMPARE(run.status, status);
    QVERIFY2(run.errors.contains(verdict), qPrintable(run.errors));
    QCOMPARE(run.errors.contains(u"x.scn"), !verdict.isEmpty());
}

void HostScenariosTest::faultsOfTheCommandLineAreArmed()
{
    const QByteArray text(
        "device R2 pc 1.2.0 otg 1.2.0\nserver pc 1.2.0 otg 1.2.0\nplug pc\nwait screen up-to-date 5s\n");
    QCOMPARE(play(text).status, 0);
    QCOMPARE(play(text, {u"--fault"_s, u"device-refuses-open"_s}).status, 1);
}

void HostScenariosTest::theRealHomeIsLeftAlone()
{
    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, home.path());
    environment.insert(u"ALLUSERSPROFILE"_s, home.path());
    const QByteArray text("device R2 pc 1.1.1 otg 1.1.1\nserver pc 1.2.0 otg 1.2.0\nplug pc\n"
                          "wait screen upgrade-available\nhold screen upgrade-available 1s\nclick upgrade\n"
                          "wait screen waiting-pc\n");
    const HostRun run
        = HostRun::with({u"--simulate"_s, u"--headless"_s, u"--scenario"_s, write(text)}, environment);
    QVERIFY2(run.status == 0, qPrintable(run.errors));
    QVERIFY(!QDir(home.path()).exists(u"Orvik"_s));
    QVERIFY(!QDir(home.path()).exists(u"AppData"_s));
}

QUILLON_TEST_CORE(HostScenariosTest)
#include "tst_host_scenarios.moc"
