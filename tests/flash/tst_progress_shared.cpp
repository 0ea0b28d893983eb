// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A progress file that the tool keeps open for writing while the panel reads it.
#include "flash/ProgressFile.h"
#include "tests/flash/FlashingTest.h"
#include "tests/support/TestProgram.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
/// For a machine that is busy with other things.
constexpr int kPatience = 20'000;
} // namespace

class ProgressSharedTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void everyPollReadsIt_data();
    void everyPollReadsIt();
    void aRunIsFollowedToItsEnd_data();
    void aRunIsFollowedToItsEnd();
    void whatIsLeftIsToldFromANewReport_data();
    void whatIsLeftIsToldFromANewReport();

private:
    void start(const QByteArray &script)
    {
        stage().beginRun(UpgradePlan::PcOnly);
        stage().tool.obeys(script);
        QDir().mkpath(QFileInfo(stage().sandbox.progressFile()).path());
        panel().flash(stage().image, 14);
    }
};

void ProgressSharedTest::everyPollReadsIt_data()
{
    QTest::addColumn<QByteArray>("share");
    QTest::newRow("which others may read") << "read"_ba;
    QTest::newRow("which others may read and write") << "read-write"_ba;
}

void ProgressSharedTest::everyPollReadsIt()
{
    QFETCH(QByteArray, share);
    start("hold " + share + "\nappend 10%\nappend 30%\nhang");
    QTRY_COMPARE_WITH_TIMEOUT(stage().percentText(), u"30%"_s, kPatience);
    panel().pollTimer()->stop();
    stage().log.clear();

    constexpr int kPolls = 200;
    for (int i = 0; i < kPolls; ++i) {
        // However slow the machine is, the tool does not count as stalled.
        panel().pretendLastPercentSince(QDateTime::currentDateTime());
        panel().pollProgress();
    }
    QCOMPARE(stage().log.startingWith(u"[onReadFirmwareTxt] percent= 30 "_s).size(), kPolls);
    QVERIFY(stage().isToolRunning());
}

void ProgressSharedTest::aRunIsFollowedToItsEnd_data()
{
    everyPollReadsIt_data();
    QTest::newRow("which others may do nothing with until the tool ends") << "nothing"_ba;
}

void ProgressSharedTest::aRunIsFollowedToItsEnd()
{
    QFETCH(QByteArray, share);
    QByteArray script = "hold " + share + '\n';
    for (int percent = 0; percent <= 100; percent += 4)
        script += "write " + QByteArray::number(percent) + "%\npause 20\n";
    start(script + "write success 1\n");
    QTRY_VERIFY_WITH_TIMEOUT(!panel().isUpgrading(), kPatience);
    QCOMPARE(stage().percentOnBar(), 100);
    QVERIFY(!stage().showsFailure());
}

void ProgressSharedTest::whatIsLeftIsToldFromANewReport_data()
{
    QTest::addColumn<std::function<void(const QString &)>>("change");
    QTest::addColumn<bool>("isNew");
    using Change = std::function<void(const QString &)>;
    const auto write = [](const QByteArray &content) {
        return Change([content](const QString &path) {
            QTest::qWait(20); // the time of a change is kept in milliseconds
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        });
    };
    QTest::newRow("nothing happened") << Change([](const QString &) {}) << false;
    QTest::newRow("it was read") << Change([](const QString &path) {
        QVERIFY(QFile(path).open(QIODevice::ReadOnly));
    }) << false;
    QTest::newRow("another line") << write("5%\n") << true;
    QTest::newRow("the same words once more") << write("success 1\n") << true;
}

void ProgressSharedTest::whatIsLeftIsToldFromANewReport()
{
    QFETCH(std::function<void(const QString &)>, change);
    QFETCH(bool, isNew);
    using Outcome = ProgressFile::Reading::Outcome;
    stage().sandbox.writeProgress("success 1\n");
    const QString path = stage().sandbox.progressFile();
    const QString leftover = ProgressFile::fingerprint(path);
    QVERIFY(!leftover.isEmpty());
    change(path);
    QCOMPARE(ProgressFile::read(path, leftover).outcome, isNew ? Outcome::Line : Outcome::None);
    QCOMPARE(ProgressFile::read(path, QString()).outcome, Outcome::Line);

    QCOMPARE(ProgressFile::clear(path), QString());
    QVERIFY(!QFile::exists(path));
    QCOMPARE(ProgressFile::clear(path), QString());
}

QUILLON_TEST(ProgressSharedTest)
#include "tst_progress_shared.moc"
