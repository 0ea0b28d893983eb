// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A tool that never ends by itself. Registered to run with a faster clock: the watchdog waits for a minute.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

class FlashingWatchdogTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void aMinuteIsTheLimit_data();
    void aMinuteIsTheLimit();

private:
    qint64 runUntilTheToolEnds(const QByteArray &script);
};

/// In milliseconds of the faster clock.
qint64 FlashingWatchdogTest::runUntilTheToolEnds(const QByteArray &script)
{
    panel().pretendPlan(UpgradePlan::PcOnly);
    panel().pretendUpgrading(true);
    stage().tool.obeys(script);
    QElapsedTimer time;
    time.start();
    panel().flash(stage().image, 14);
    if (!QTest::qWaitFor([this] { return !stage().isToolRunning(); }, 200'000))
        return -1;
    return time.elapsed();
}

void FlashingWatchdogTest::aMinuteIsTheLimit_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("verdict");
    QTest::newRow("no report") << "ignore-terminate\nhang"_ba
                               << u"[状态] 进程已退出但无进度文件，判定为失败"_s;
    QTest::newRow("an empty report") << "empty\nhang"_ba << u"[状态] 进程已退出但进度文件为空，判定为失败"_s;
    QTest::newRow("0 % is never judged") << "write 0%\nhang"_ba << QString();
    QTest::newRow("an unknown line is never judged") << "write erasing\nhang"_ba << QString();
}

void FlashingWatchdogTest::aMinuteIsTheLimit()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, verdict);
    const qint64 ended = runUntilTheToolEnds(script);
    // On a busy machine the faster clock runs far ahead of what the processes get done.
    QVERIFY2(ended >= 59'500 && ended < 120'000, qPrintable(QString::number(ended)));
    if (verdict.isEmpty()) {
        QTest::qWait(30'000);
        QVERIFY(panel().pollTimer()->isActive());
        QVERIFY(panel().isUpgrading());
        QVERIFY(!stage().showsFailure());
        QCOMPARE(stage().percentText(), u"0%"_s);
        QCOMPARE(panel().lastPercent(), -1);
    } else {
        QTRY_VERIFY(stage().log.contains(verdict));
        QVERIFY(stage().showsFailure());
        QVERIFY(!panel().pollTimer()->isActive());
    }
}

QUILLON_TEST(FlashingWatchdogTest)
#include "tst_flashing_watchdog.moc"
