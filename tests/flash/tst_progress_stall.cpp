// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// When a percentage that stands still is a stall, and what becomes of the run then.
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

class ProgressStallTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void percentagesAreRecorded_data();
    void percentagesAreRecorded();
    void aStallBelowAllFails_data();
    void aStallBelowAllFails();
    void aStallAtAllEndsTheToolAndSucceeds();
    void aStallNeedsThreeSeconds_data();
    void aStallNeedsThreeSeconds();
};

void ProgressStallTest::percentagesAreRecorded_data()
{
    QTest::addColumn<int>("recorded");
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("isRecorded");
    QTest::newRow("0 % does not arm the detector") << -1 << 0 << false;
    QTest::newRow("less than nothing does not arm it") << -1 << -5 << false;
    QTest::newRow("1 % arms it") << -1 << 1 << true;
    QTest::newRow("100 % arms it") << -1 << 100 << true;
    QTest::newRow("a higher percentage") << 41 << 42 << true;
    QTest::newRow("a lower percentage") << 42 << 41 << true;
    QTest::newRow("0 % after another percentage") << 42 << 0 << true;
    QTest::newRow("the same percentage") << 42 << 42 << false;
}

void ProgressStallTest::percentagesAreRecorded()
{
    QFETCH(int, recorded);
    QFETCH(int, percent);
    QFETCH(bool, isRecorded);
    QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    const QDateTime before = recorded < 0 ? QDateTime() : QDateTime::currentDateTime().addMSecs(-1500);
    panel().pretendLastPercent(recorded);
    panel().pretendLastPercentSince(before);
    const QDateTime now = QDateTime::currentDateTime();
    stage().poll(QByteArray::number(percent) + '%');
    QCOMPARE(panel().lastPercent(), isRecorded ? percent : recorded);
    if (isRecorded)
        QVERIFY(panel().lastPercentSince() >= now
                && panel().lastPercentSince() <= QDateTime::currentDateTime());
    else
        QCOMPARE(panel().lastPercentSince(), before);
    QCOMPARE(stage().percentText(), QString::number(percent) + u'%');
}

void ProgressStallTest::aStallBelowAllFails_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("isToolRunning");
    QTest::newRow("1 %") << 1 << true;
    QTest::newRow("42 %") << 42 << true;
    QTest::newRow("99 %") << 99 << true;
    QTest::newRow("0 % that followed another percentage") << 0 << true;
    QTest::newRow("42 %, the tool has ended") << 42 << false;
}

void ProgressStallTest::aStallBelowAllFails()
{
    QFETCH(int, percent);
    QFETCH(bool, isToolRunning);
    if (isToolRunning)
        QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    panel().pretendLastPercent(percent);
    panel().pretendLastPercentSince(QDateTime::currentDateTime().addSecs(-3));
    stage().log.clear();
    stage().poll(QByteArray::number(percent) + '%');
    QCOMPARE(stage().log.lines().value(0), u"[状态] 升级进度停滞3秒，判定为失败"_s);
    QCOMPARE(stage().log.lines().size(), isToolRunning ? 2 : 1);
    QVERIFY(!panel().pollTimer()->isActive());
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    QVERIFY(stage().showsFailure());
    QVERIFY(!panel().isUpgrading());
    QCOMPARE(stage().percentText(), u"0%"_s);
}

void ProgressStallTest::aStallAtAllEndsTheToolAndSucceeds()
{
    QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    panel().pretendLastPercent(100);
    panel().pretendLastPercentSince(QDateTime::currentDateTime().addSecs(-3));
    stage().log.clear();
    stage().poll("100%");
    QCOMPARE(stage().log.lines().value(0), u"[状态] 进度100%停滞3秒，主动终止外部工具"_s);
    QCOMPARE(panel().tool()->state(), QProcess::NotRunning);
    QVERIFY(panel().pollTimer()->isActive());
    QVERIFY(panel().isUpgrading());
    QVERIFY(!stage().showsFailure());
    QVERIFY(panel().doneText()->isHidden());

    stage().log.clear();
    panel().pollProgress();
    QCOMPARE(stage().log.lines().mid(0, 2),
             (QStringList{u"[状态] 进度100%且进程已退出，视为升级成功"_s, u"Successfully upgrade !!!"_s}));
    QVERIFY(!panel().pollTimer()->isActive());
    QVERIFY(!panel().isUpgrading());
    QVERIFY(!panel().doneText()->isHidden());
}

void ProgressStallTest::aStallNeedsThreeSeconds_data()
{
    QTest::addColumn<QDateTime>("recordedAt");
    QTest::newRow("not quite three seconds") << QDateTime::currentDateTime().addMSecs(-2'500);
    QTest::newRow("a clock set back") << QDateTime::currentDateTime().addSecs(3600);
    QTest::newRow("no time recorded") << QDateTime();
}

void ProgressStallTest::aStallNeedsThreeSeconds()
{
    QFETCH(QDateTime, recordedAt);
    if (recordedAt.isValid() && recordedAt < QDateTime::currentDateTime())
        recordedAt = QDateTime::currentDateTime().addMSecs(-2'500);
    stage().beginRun(UpgradePlan::PcOnly);
    panel().pretendLastPercent(42);
    panel().pretendLastPercentSince(recordedAt);
    stage().poll("42%");
    QCOMPARE(stage().percentText(), u"42%"_s);
    QVERIFY(!stage().showsFailure());
    QVERIFY(panel().pollTimer()->isActive());
    QCOMPARE(panel().lastPercentSince(), recordedAt);
}

QUILLON_TEST(ProgressStallTest)
#include "tst_progress_stall.moc"
