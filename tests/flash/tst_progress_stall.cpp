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
    QVERIFY(m->runSilentTool());
    m->beginRun(UpgradePlan::PcOnly);
    const QDateTime before = recorded < 0 ? QDateTime() : QDateTime::currentDateTime().addMSecs(-1500);
    m->panel->pretendLastPercent(recorded);
    m->panel->pretendLastPercentSince(before);
    const QDateTime now = QDateTime::currentDateTime();
    m->poll(QByteArray::number(percent) + '%');
    QCOMPARE(m->panel->lastPercent(), isRecorded ? percent : recorded);
    if (isRecorded)
        QVERIFY(m->panel->lastPercentSince() >= now
                && m->panel->lastPercentSince() <= QDateTime::currentDateTime());
    else
        QCOMPARE(m->panel->lastPercentSince(), before);
    QCOMPARE(m->percentText(), QString::number(percent) + u'%');
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
        QVERIFY(m->runSilentTool());
    m->beginRun(UpgradePlan::PcOnly);
    m->panel->pretendLastPercent(percent);
    m->panel->pretendLastPercentSince(QDateTime::currentDateTime().addSecs(-3));
    m->log.clear();
    m->poll(QByteArray::number(percent) + '%');
    QCOMPARE(m->log.lines().value(0), u"[状态] 升级进度停滞3秒，判定为失败"_s);
    QCOMPARE(m->log.lines().size(), isToolRunning ? 2 : 1);
    QVERIFY(!m->panel->pollTimer()->isActive());
    QCOMPARE(m->panel->tool()->state(), QProcess::NotRunning);
    QVERIFY(m->showsFailure());
    QVERIFY(!m->panel->isUpgrading());
    QCOMPARE(m->percentText(), u"0%"_s);
}

void ProgressStallTest::aStallAtAllEndsTheToolAndSucceeds()
{
    QVERIFY(m->runSilentTool());
    m->beginRun(UpgradePlan::PcOnly);
    m->panel->pretendLastPercent(100);
    m->panel->pretendLastPercentSince(QDateTime::currentDateTime().addSecs(-3));
    m->log.clear();
    m->poll("100%");
    QCOMPARE(m->log.lines().value(0), u"[状态] 进度100%停滞3秒，主动终止外部工具"_s);
    QCOMPARE(m->panel->tool()->state(), QProcess::NotRunning);
    QVERIFY(m->panel->pollTimer()->isActive());
    QVERIFY(m->panel->isUpgrading());
    QVERIFY(!m->showsFailure());
    QVERIFY(m->panel->doneText()->isHidden());

    m->log.clear();
    m->panel->pollProgress();
    QCOMPARE(m->log.lines().mid(0, 2),
             (QStringList{u"[状态] 进度100%且进程已退出，视为升级成功"_s, u"Successfully upgrade !!!"_s}));
    QVERIFY(!m->panel->pollTimer()->isActive());
    QVERIFY(!m->panel->isUpgrading());
    QVERIFY(!m->panel->doneText()->isHidden());
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
    m->beginRun(UpgradePlan::PcOnly);
    m->panel->pretendLastPercent(42);
    m->panel->pretendLastPercentSince(recordedAt);
    m->poll("42%");
    QCOMPARE(m->percentText(), u"42%"_s);
    QVERIFY(!m->showsFailure());
    QVERIFY(m->panel->pollTimer()->isActive());
    QCOMPARE(m->panel->lastPercentSince(), recordedAt);
}

QUILLON_TEST(ProgressStallTest)
#include "tst_progress_stall.moc"
