// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

/// A process that never releases the library still ends, quickly and well.
class HidExitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void processEndsWell_data();
    void processEndsWell();
};

void HidExitTest::processEndsWell_data()
{
    QTest::addColumn<QString>("ending");
    for (const char *ending : {"return", "exit", "leaked-application", "no-application", "late-release",
                               "hanging-write", "two-applications"})
        QTest::newRow(ending) << QString::fromLatin1(ending);
}

void HidExitTest::processEndsWell()
{
    QFETCH(QString, ending);

    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    program.start(QStringLiteral(HID_EXIT_PROGRAM), {ending});
    const bool ended = program.waitForFinished(10000);
    if (!ended)
        program.kill();
    QVERIFY(ended);
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
}

QUILLON_TEST_CORE(HidExitTest)
#include "tst_hid_exit.moc"
