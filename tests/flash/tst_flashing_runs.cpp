// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Whole runs of a real tool, in real time: started, followed, judged.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

class FlashingRunsTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void aRunEnds_data();
    void aRunEnds();
};

void FlashingRunsTest::aRunEnds_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("succeeds");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("earliest");
    QTest::addColumn<int>("latest");
    const QString success = u"Successfully upgrade !!!"_s;
    const QString noFile = u"[状态] 进程已退出但无进度文件，判定为失败"_s;
    const QString emptyFile = u"[状态] 进程已退出但进度文件为空，判定为失败"_s;
    const QString stall = u"[状态] 升级进度停滞3秒，判定为失败"_s;
    const QString badStatus = u"[状态] 升级失败(status= 0 )，显示失败重试 UI"_s;

    QTest::newRow("a tool that rewrites its report")
        << "write 10%\npause 300\nwrite 55%\npause 300\nwrite success 1"_ba << true << success << 500 << 3000;
    QTest::newRow("a tool that appends to its report")
        << "append 10%\npause 300\nappend 55%\npause 300\nappend success 1"_ba << true << success << 500
        << 3000;
    QTest::newRow("a tool that takes two seconds a step")
        << "write 10%\npause 2000\nwrite 20%\npause 2000\nwrite success 1"_ba << true << success << 3900
        << 7000;
    QTest::newRow("a tool that does not quit after its success")
        << "ignore-terminate\nwrite success 1\nhang"_ba << true << success << 0 << 3000;
    QTest::newRow("a tool that quits at 100 %") << "write 100%\nexit 5"_ba << true << success << 0 << 3000;
    QTest::newRow("a tool that stands at 100 %") << "write 100%\nhang"_ba << true << success << 2950 << 6000;
    QTest::newRow("a tool that stands at 42 %") << "write 42%\nhang"_ba << false << stall << 2950 << 6000;
    QTest::newRow("a tool that crashes at 30 %") << "write 30%\ncrash"_ba << false << stall << 2950 << 6000;
    QTest::newRow("a tool that reports a failure")
        << "write 30%\npause 200\nwrite success 0\nexit 0"_ba << false << badStatus << 100 << 3000;
    QTest::newRow("a tool that crashes at once") << "crash"_ba << false << noFile << 0 << 3000;
    QTest::newRow("a tool that ends well and says nothing") << "exit 0"_ba << false << noFile << 0 << 3000;
    QTest::newRow("a tool that ends well and reports nothing")
        << "empty\nexit 0"_ba << false << emptyFile << 0 << 3000;
}

void FlashingRunsTest::aRunEnds()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, succeeds);
    QFETCH(QString, line);
    QFETCH(int, earliest);
    QFETCH(int, latest);
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendUpgrading(true);
    stage().tool.obeys(script);
    QElapsedTimer time;
    time.start();
    panel().flash(stage().image, 14);
    QVERIFY(panel().pollTimer()->isActive());

    QTRY_VERIFY_WITH_TIMEOUT(!panel().pollTimer()->isActive(), latest);
    QVERIFY2(time.elapsed() >= earliest, qPrintable(QString::number(time.elapsed())));
    QCOMPARE(stage().log.count(line), 1);
    QCOMPARE(stage().log.contains(u"Successfully upgrade !!!"_s), succeeds);
    QCOMPARE(stage().showsFailure(), !succeeds);
    QCOMPARE(panel().doneText()->isHidden(), !succeeds);
    QCOMPARE(panel().awaitsNewVersions(), succeeds);
    QVERIFY(!panel().isUpgrading());
    QTRY_COMPARE(panel().tool()->state(), QProcess::NotRunning);
    QVERIFY(!panel().watchdog()->isActive());
}

QUILLON_TEST(FlashingRunsTest)
#include "tst_flashing_runs.moc"
