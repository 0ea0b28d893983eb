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
        return std::make_unique<HeldFile>(m->sandbox.progressFile(), share);
    }
    void poll(int times)
    {
        for (int i = 0; i < times; ++i)
            m->panel->pollProgress();
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
    m->sandbox.writeProgress("5%");
    const auto holder = share ? hold(*share) : nullptr;
    QTEST(SharedFile::isHeld(m->sandbox.progressFile()), "isHeld");
    QFile file(m->sandbox.progressFile());
    QTEST(SharedFile::openForReading(file), "canBeRead");
    QVERIFY(!SharedFile::isHeld(m->sandbox.home() + u"/no such file"_s));
    QVERIFY(!SharedFile::isHeld(m->sandbox.home()));
}

void ProgressHeldTest::aFileThatIsReadCanBeReplaced()
{
    m->sandbox.writeProgress("5%\r\n");
    QFile reading(m->sandbox.progressFile());
    QVERIFY(SharedFile::openForReading(reading));
    QVERIFY(QFile::remove(m->sandbox.progressFile()));
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
    m->beginRun(UpgradePlan::PcOnly);
    m->sandbox.writeProgress(line);
    auto scanner = hold(Share::Nothing);
    m->panel->pollTimer()->stop();
    poll(15);
    QVERIFY(m->panel->isUpgrading());
    QVERIFY(!m->showsFailure());

    scanner.reset();
    poll(1);
    QVERIFY(!m->panel->isUpgrading());
    QCOMPARE(m->showsFailure(), !succeeds);
}

void ProgressHeldTest::aScannerThatNeverLetsGoIsNotWaitedFor()
{
    m->beginRun(UpgradePlan::PcOnly);
    m->sandbox.writeProgress("success 1");
    const auto scanner = hold(Share::Nothing);
    QTRY_VERIFY_WITH_TIMEOUT(m->showsFailure(), kPatience);
    QVERIFY(m->log.contains(u"[状态] 进程已退出但无进度文件，判定为失败"_s));
    QVERIFY(!m->panel->pollTimer()->isActive());
}

void ProgressHeldTest::whileTheToolRunsNobodyHurries()
{
    QVERIFY(m->runSilentTool());
    m->beginRun(UpgradePlan::PcOnly);
    m->sandbox.writeProgress("17%");
    auto scanner = hold(Share::Nothing);
    m->panel->pollTimer()->stop();
    poll(100);
    QVERIFY(!m->showsFailure());
    scanner.reset();
    poll(1);
    QCOMPARE(m->percentText(), u"17%"_s);
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
    m->sandbox.writeProgress("success 1\n");
    auto holder = hold(share);
    m->beginRun(UpgradePlan::PcOnly);
    m->tool.obeys("await go\nwrite 5%\nhang");
    m->panel->flash(m->image, 14);
    m->panel->pollTimer()->stop();
    QVERIFY(QFile::exists(m->sandbox.progressFile()));
    poll(50);
    QVERIFY(m->isToolRunning());
    QVERIFY(m->panel->isUpgrading());
    QCOMPARE(m->percentOnBar(), 0);

    holder.reset();
    poll(1);
    QVERIFY(m->isToolRunning());
    QVERIFY(m->panel->isUpgrading());
    m->panel->pollTimer()->start();
    FakeFlashingTool::signal(u"go"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m->percentText(), u"5%"_s, kPatience);
}

void ProgressHeldTest::anOldReportIsNoneWhenTheToolWritesNothing()
{
    m->sandbox.writeProgress("success 1\n");
    const auto holder = hold(Share::Reading);
    m->beginRun(UpgradePlan::PcOnly);
    m->tool.obeys("exit 0");
    m->panel->flash(m->image, 14);
    QTRY_VERIFY_WITH_TIMEOUT(m->showsFailure(), kPatience);
    QVERIFY(m->log.contains(u"[状态] 进程已退出但无进度文件，判定为失败"_s));
}

QUILLON_TEST(ProgressHeldTest)
#include "tst_progress_held.moc"
