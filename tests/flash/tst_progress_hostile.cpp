// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Progress files that no flashing tool would write. The panel neither stops nor takes them for a success.
#include "tests/flash/FlashingTest.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>

#ifdef Q_OS_WIN
#include <windows.h>

#include <psapi.h>
#endif

using namespace Qt::StringLiterals;

class ProgressHostileTest : public FlashingTest {
    Q_OBJECT

private Q_SLOTS:
    void aHugeFileCostsNothing_data();
    void aHugeFileCostsNothing();
    void aDeviceWithoutEndIsNotReadToItsEnd();
    void aFolderCannotBeOpened_data();
    void aFolderCannotBeOpened();
    void aFolderInTheWayDoesNotKeepTheToolFromStarting();
    void aHomeThatIsNoFolderHoldsNoFile();
    void noiseIsNoVerdict();

private:
    void makeHugeFile(const QByteArray &end);
};

namespace {
constexpr qint64 kHuge = 1024 * kMiB;

/// The most memory that this process ever held, in KiB; -1 where the system does not tell.
qint64 peakMemory()
{
#ifdef Q_OS_WIN
    PROCESS_MEMORY_COUNTERS memory{};
    return GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory)
        ? qint64(memory.PeakWorkingSetSize / 1024)
        : -1;
#else
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("VmHWM:");
    return at < 0 ? -1 : text.mid(at + 6).trimmed().split(' ').first().toLongLong();
#endif
}
} // namespace

void ProgressHostileTest::makeHugeFile(const QByteArray &end)
{
    stage().sandbox.writeProgress({});
    QFile file(stage().sandbox.progressFile());
    // A hole of this size takes no room on the disk.
    QVERIFY(file.open(QIODevice::ReadWrite) && file.resize(kHuge) && file.seek(kHuge));
    QCOMPARE(file.write(end), end.size());
}

void ProgressHostileTest::aHugeFileCostsNothing_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<QString>("text");
    QTest::newRow("without a line end") << ""_ba << u"7%"_s;
    QTest::newRow("without a line end before the percentage") << "55%"_ba << u"7%"_s;
    QTest::newRow("with a percentage in its last line") << "\n55%\n"_ba << u"55%"_s;
}

void ProgressHostileTest::aHugeFileCostsNothing()
{
    QFETCH(QByteArray, end);
    stage().beginRun(UpgradePlan::PcOnly);
    panel().percentText()->setText(u"7%"_s);
    makeHugeFile(end);
    const qint64 before = peakMemory();
    QElapsedTimer time;
    time.start();
    panel().pollProgress();
    QVERIFY2(time.elapsed() < 500, qPrintable(QString::number(time.elapsed())));
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < 32 * kKiB, qPrintable(QString::number(grown)));
    QTEST(stage().percentText(), "text");
    QVERIFY(panel().pollTimer()->isActive());
}

void ProgressHostileTest::aDeviceWithoutEndIsNotReadToItsEnd()
{
    const QString endless = u"/dev/zero"_s;
    if (!QFile::exists(endless))
        QSKIP("this machine has no device without an end");
    stage().beginRun(UpgradePlan::PcOnly);
    stage().sandbox.writeProgress({});
    QVERIFY(QFile::remove(stage().sandbox.progressFile())
            && QFile::link(endless, stage().sandbox.progressFile()));
    QElapsedTimer time;
    time.start();
    panel().pollProgress();
    QVERIFY2(time.elapsed() < 500, qPrintable(QString::number(time.elapsed())));
    QVERIFY(!stage().showsFailure());
}

void ProgressHostileTest::aFolderCannotBeOpened_data()
{
    QTest::addColumn<bool>("isToolRunning");
    QTest::newRow("the tool is starting") << true;
    QTest::newRow("the tool has ended") << false;
}

void ProgressHostileTest::aFolderCannotBeOpened()
{
    QFETCH(bool, isToolRunning);
    if (isToolRunning)
        QVERIFY(stage().runSilentTool());
    stage().beginRun(UpgradePlan::PcOnly);
    QVERIFY(QDir().mkpath(stage().sandbox.progressFile()));
    panel().pollProgress();
    QCOMPARE(stage().log.contains(u"[状态] 进程已退出但无进度文件，判定为失败"_s), !isToolRunning);
    QCOMPARE(stage().showsFailure(), !isToolRunning);
    QCOMPARE(panel().pollTimer()->isActive(), isToolRunning);
}

void ProgressHostileTest::aFolderInTheWayDoesNotKeepTheToolFromStarting()
{
    QVERIFY(QDir().mkpath(stage().sandbox.progressFile()));
    panel().pretendUpgrading(true);
    panel().flash(stage().image, 14);
    QTRY_COMPARE(stage().tool.runs().size(), 1);
    QTRY_VERIFY(stage().showsFailure());
}

void ProgressHostileTest::aHomeThatIsNoFolderHoldsNoFile()
{
#ifdef Q_OS_WIN
    QSKIP("the home of a user is a folder on Windows");
#endif
    stage().beginRun(UpgradePlan::PcOnly);
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(stage().image));
    panel().pollProgress();
    qputenv("HOME", home);
    QVERIFY(stage().showsFailure());
    QVERIFY(stage().log.contains(u"[状态] 进程已退出但无进度文件，判定为失败"_s));
}

void ProgressHostileTest::noiseIsNoVerdict()
{
    QRandomGenerator random(20'240'607);
    const QByteArray alphabet = "0123456789% \r\n\t\xff"_ba + '\0';
    stage().beginRun(UpgradePlan::PcOnly);
    for (int i = 0; i < 2'000; ++i) {
        QByteArray noise;
        for (int length = random.bounded(1, 40); length > 0; --length)
            noise.append(i % 2 ? char(random.bounded(256)) : alphabet.at(random.bounded(alphabet.size())));
        if (noise.trimmed().endsWith("100%"))
            continue;
        panel().pretendLastPercentSince(QDateTime());
        stage().poll(noise);
        QVERIFY2(panel().pollTimer()->isActive(), noise.toHex().constData());
    }
}

QUILLON_TEST(ProgressHostileTest)
#include "tst_progress_hostile.moc"
