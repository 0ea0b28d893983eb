// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Session.h"
#include "rig/watch/StallRule.h"
#include "tests/host/ScenarioFile.h"
#include "tests/rig/Standstill.h"
#include "tests/support/Files.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestProgram.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

// A session in this process, whose event loop something here keeps from turning.
class HostFreezeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRunThatStandsStillFails();

private:
    Sandbox m_sandbox;
};

void HostFreezeTest::aRunThatStandsStillFails()
{
    const ScenarioFile file("pause 1s\nexpect screen searching\n");
    const QTemporaryDir records;
    host::Options options;
    options.simulate = options.headless = true;
    options.scenario = file.path;
    options.recordFolder = records.path();
    QString error;
    host::Session session(options, rig::Scenario::load(file.path, &error));
    QVERIFY2(session.start(&error), qPrintable(error));
    QTimer::singleShot(500, this, [] { Standstill::compute(rig::kTurnLimit * 8 / 5); });
    QApplication::exec();

    QCOMPARE(session.status(), host::kStatusFailed);
    const QString log = QString::fromUtf8(contentOf(records.filePath(u"log.txt"_s)));
    QVERIFY2(log.contains(u"failed: x.scn:1: pause 1s: the GUI thread stood still for "_s), qPrintable(log));
    const QStringList told = log.split(u'\n').filter(u"gui watch"_s);
    QVERIFY2(!told.filter(u"Standstill::compute("_s).isEmpty(), qPrintable(log));
    QVERIFY2(!told.filter(u"aRunThatStandsStillFails"_s).isEmpty(), qPrintable(log));
}

QUILLON_TEST(HostFreezeTest)
#include "tst_host_freeze.moc"
