// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// quillon-host opens no console of its own on Windows, and what it prints still arrives, in every script.
#include "tests/host/HostRun.h"
#include "tests/support/TestProgram.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;

class HostConsoleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSystemOpensAConsoleForTheToolAlone_data();
    void theSystemOpensAConsoleForTheToolAlone();
    void whatItPrintsGoesIntoAFile();
    void aNameInAnyScriptComesBackUnchanged_data();
    void aNameInAnyScriptComesBackUnchanged();
    void withoutAReaderItPrintsNothingAndEnds();
};

namespace {
/// The word in a program's head that says whether it is started with a console.
int subsystemOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(0x3C))
        return -1;
    const auto head = qFromLittleEndian<quint32>(file.read(4).constData());
    constexpr int kSubsystemInHead = 92;
    file.seek(head + kSubsystemInHead);
    return qFromLittleEndian<quint16>(file.read(2).constData());
}
constexpr int kWithWindows = 2;
constexpr int kWithConsole = 3;
} // namespace

void HostConsoleTest::theSystemOpensAConsoleForTheToolAlone_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<int>("subsystem");
    const QString host = QStringLiteral(QUILLON_HOST);
    QTest::newRow("quillon-host") << host << kWithWindows;
    QTest::newRow("the flashing tool")
        << host.left(host.lastIndexOf(u'/')) + u"/OrvikFirmwareUpdata.exe"_s << kWithConsole;
}

void HostConsoleTest::theSystemOpensAConsoleForTheToolAlone()
{
    QFETCH(QString, program);
    QTEST(subsystemOf(program), "subsystem");
}

void HostConsoleTest::whatItPrintsGoesIntoAFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"help.txt"_s);
    QProcess host;
    host.setStandardOutputFile(path);
    host.start(QStringLiteral(QUILLON_HOST), {u"--help"_s});
    QVERIFY(host.waitForFinished(60'000));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().startsWith("Usage: quillon-host"));
    QCOMPARE(host.readAllStandardError(), QByteArray());
}

void HostConsoleTest::aNameInAnyScriptComesBackUnchanged_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Chinese") << u"用户 一"_s;
    QTest::newRow("German, and signs") << u"O'Brien & Söhne 100%"_s;
    QTest::newRow("quotes") << u"a \"b\" c\\"_s;
    QTest::newRow("beyond the first 65536 letters") << u"\U0001F3B5"_s;
}

void HostConsoleTest::aNameInAnyScriptComesBackUnchanged()
{
    QFETCH(QString, name);
    const HostRun run = HostRun::with({u"--model"_s, name});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errors.trimmed(), u"quillon-host: --model takes R1 or R2, not \"%1\""_s.arg(name));
}

void HostConsoleTest::withoutAReaderItPrintsNothingAndEnds()
{
    QProcess host;
    host.setStandardOutputFile(QProcess::nullDevice());
    host.setStandardErrorFile(QProcess::nullDevice());
    host.start(QStringLiteral(QUILLON_HOST), {u"--help"_s});
    QVERIFY(host.waitForFinished(60'000));
    QCOMPARE(host.exitCode(), 0);
}

QUILLON_TEST_CORE(HostConsoleTest)
#include "tst_host_console.moc"
