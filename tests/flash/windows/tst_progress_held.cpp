// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A progress file that a virus scanner, an editor or an old tool keeps to itself, which Windows lets it do.
#include "system/SharedFile.h"
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
/// For a machine that is busy with other things.
constexpr int kPatience = 20'000;
} // namespace

class ProgressHeldTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void aFileIsHeld_data();
    void aFileIsHeld();
    void aFileThatIsReadCanBeReplaced();
    void theVerdictWaitsForTheScanner_data();
    void theVerdictWaitsForTheScanner();
    void aScannerThatNeverLetsGoIsNotWaitedFor();
    void whileTheToolRunsNobodyHurries();
    void anOldSuccessThatCannotBeRemovedIsNone_data();
    void anOldSuccessThatCannotBeRemovedIsNone();
    void anOldReportIsNoneWhenTheToolWritesNothing();

private:
    using Share = HeldFile::Share;

    std::unique_ptr<HeldFile> hold(Share share)
    {
        return std::make_unique<HeldFile>(stage().sandbox.progressFile(), share);
    }
    void poll(int times)
    {
        for (int i = 0; i < times; ++i)
            panel().pollProgress();
    }
};

void ProgressHeldTest::aFileIsHeld_data()
{
    QTest::addColumn<std::optional<Share>>("share");
    QTest::addColumn<bool>("isHeld");
    QTest::addColumn<bool>("canBeRead");
    using Held = std::optional<Share>;
    QTest::newRow("by nobody") << Held() << false << true;
    QTest::newRow("by one who shares nothing") << Held(Share::Nothing) << true << false;
    QTest::newRow("by one who lets it be read") << Held(Share::Reading) << true << true;
    QTest::newRow("by one who lets it be written") << Held(Share::ReadingAndWriting) << false << true;
}

void ProgressHeldTest::aFileIsHeld()
{
    QFETCH(std::optional<HeldFile::Share>, share);
    stage().sandbox.writeProgress("5%");
    const auto holder = share ? hold(*share) : nullptr;
    QTEST(SharedFile::isHeld(stage().sandbox.progressFile()), "isHeld");
    QFile file(stage().sandbox.progressFile());
    QTEST(SharedFile::openForReading(file), "canBeRead");
    QVERIFY(!SharedFile::isHeld(stage().sandbox.home() + u"/no such file"_s));
    QVERIFY(!SharedFile::isHeld(stage().sandbox.home()));
}

void ProgressHeldTest::aFileThatIsReadCanBeReplaced()
{
    stage().sandbox.writeProgress("5%\r\n");
    QFile reading(stage().sandbox.progressFile());
    QVERIFY(SharedFile::openForReading(reading));
    QVERIFY(QFile::remove(stage().sandbox.progressFile()));
    QCOMPARE(reading.readAll(), "5%\n"_ba);
}

void ProgressHeldTest::theVerdictWaitsForTheScanner_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("success") << "success 1"_ba << true;
    QTest::newRow("failure") << "success 0"_ba << false;
    QTest::newRow("all written") << "100%"_ba << true;
}

void ProgressHeldTest::theVerdictWaitsForTheScanner()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, succeeds);
    stage().beginRun(UpgradePlan::PcOnly);
    stage().sandbox.writeProgress(line);
    auto scanner = hold(Share::Nothing);
    panel().pollTimer()->stop();
    poll(15);
    QVERIFY(panel().isUpgrading());
    QVERIFY(!stage().showsFailure());

    scanner.reset();
    poll(1);
    QVERIFY(!panel().isUpgrading());
    QCOMPARE(stage().showsFailure(), !succeeds);
}

void ProgressHeldTest::aScannerThatNeverLetsGoIsNotWaitedFor()
{
    stage().beginRun(UpgradePlan::PcOnly);
    stage().sandbox.writeProgress("success 1");
    const auto scanner = hold(Share::Nothing);
    QTRY_VERIFY_WITH_TIMEOUT(stage().showsFailure(), kPatience);
    QVERIFY(stage().log.contains(u"[状态] 进程已退出但无进度文件，判定为失败"_s));
    QVERIFY(!panel().pollTimer()->isActive());
}

void ProgressHeldTest::whileTheToolRunsNobodyHurries()
{
    QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    stage().sandbox.writeProgress("17%");
    auto scanner = hold(Share::Nothing);
    panel().pollTimer()->stop();
    poll(100);
    QVERIFY(!stage().showsFailure());
    scanner.reset();
    poll(1);
    QCOMPARE(stage().percentText(), u"17%"_s);
}

void ProgressHeldTest::anOldSuccessThatCannotBeRemovedIsNone_data()
{
    QTest::addColumn<Share>("share");
    QTest::newRow("held by one who shares nothing") << Share::Nothing;
    QTest::newRow("held by one who lets it be read") << Share::Reading;
    QTest::newRow("held by one who lets it be written") << Share::ReadingAndWriting;
}

void ProgressHeldTest::anOldSuccessThatCannotBeRemovedIsNone()
{
    QFETCH(HeldFile::Share, share);
    stage().sandbox.writeProgress("success 1\n");
    auto holder = hold(share);
    stage().beginRun(UpgradePlan::PcOnly);
    stage().tool.obeys("await go\nwrite 5%\nhang");
    panel().flash(stage().image, 14);
    panel().pollTimer()->stop();
    QVERIFY(QFile::exists(stage().sandbox.progressFile()));
    poll(50);
    QVERIFY(stage().isToolRunning());
    QVERIFY(panel().isUpgrading());
    QCOMPARE(stage().percentOnBar(), 0);

    holder.reset();
    poll(1);
    QVERIFY(stage().isToolRunning());
    QVERIFY(panel().isUpgrading());
    panel().pollTimer()->start();
    FakeFlashingTool::signal(u"go"_s);
    QTRY_COMPARE_WITH_TIMEOUT(stage().percentText(), u"5%"_s, kPatience);
}

void ProgressHeldTest::anOldReportIsNoneWhenTheToolWritesNothing()
{
    stage().sandbox.writeProgress("success 1\n");
    const auto holder = hold(Share::Reading);
    stage().beginRun(UpgradePlan::PcOnly);
    stage().tool.obeys("exit 0");
    panel().flash(stage().image, 14);
    QTRY_VERIFY_WITH_TIMEOUT(stage().showsFailure(), kPatience);
    QVERIFY(stage().log.contains(u"[状态] 进程已退出但无进度文件，判定为失败"_s));
}

QUILLON_TEST(ProgressHeldTest)
#include "tst_progress_held.moc"
