// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a whole upgrade takes beyond what nobody can take from it: the delays that the devices need and the
// flashing tool's own time, which lasts from its start to its last word in the progress file.
#include "bench/Results.h"
#include "flash/ProgressFile.h"
#include "tests/panel/ReadyToUpgrade.h"
#include "tests/support/FakeFlashingTool.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QStringList>

#include <chrono>

#include <sys/stat.h>

using namespace std::chrono_literals;

namespace {
/// The one that files are stamped with.
using Clock = std::chrono::system_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds kDelays = 12s; // before the PC chip's flashing, and before the OTG chip's
constexpr int kPcId = 0x000E;
constexpr int kOtgId = 0x001F;

Clock::time_point toolStart;
Clock::time_point runEnd;
Milliseconds toolTime{};

Clock::time_point timeOfLastWord()
{
    struct stat file { };
    const QByteArray path = QFile::encodeName(ProgressFile::path());
    if (stat(path.constData(), &file) != 0)
        giveUp("the tool has left no report");
    return Clock::time_point(std::chrono::seconds(file.st_mtim.tv_sec)
                             + std::chrono::nanoseconds(file.st_mtim.tv_nsec));
}

/// The panel's own log tells where it is.
void follow(QtMsgType, const QMessageLogContext &, const QString &line)
{
    if (line.startsWith(QStringLiteral("##222 exePath is:"))) {
        toolStart = Clock::now();
    } else if (line == QStringLiteral("Successfully upgrade !!!")) {
        runEnd = Clock::now();
        toolTime += timeOfLastWord() - toolStart;
    }
}

/// Milliseconds of one whole run that are neither delay nor tool.
double timeBeyond(UpgradePlan plan)
{
    ReadyToUpgrade stage;
    FakeFlashingTool tool;
    tool.obeys("write 50%\npause 730\nwrite success 1");
    PanelStage::bus().plug(kPcId);
    PanelStage::bus().plug(kOtgId);
    stage.panel->pretendPlan(plan);
    toolTime = {};
    const QtMessageHandler former = qInstallMessageHandler(follow);
    const Clock::time_point click = Clock::now();
    stage.click();
    QElapsedTimer patience;
    patience.start();
    while (stage.panel->isUpgrading() && !patience.hasExpired(40'000))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1000);
    qInstallMessageHandler(former);
    if (stage.panel->isUpgrading() || stage.panel->offersRetry())
        giveUp("the run did not end well");
    const Milliseconds delays = plan == UpgradePlan::Both ? kDelays : Milliseconds::zero();
    return (Milliseconds(runEnd - click) - delays - toolTime).count();
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const Results results(QCoreApplication::arguments());
    if (results.isShort()) {
        // One chip that is there already: no delay.
        results.add({QStringLiteral("upgrade of one chip, beyond the tool"),
                     QStringLiteral("ms"),
                     QString(),
                     {{timeBeyond(UpgradePlan::OtgOnly)}},
                     {},
                     {}});
        return 0;
    }
    Row row{QStringLiteral("upgrade of both chips, beyond delays and tool"),
            QStringLiteral("ms"),
            QStringLiteral("100"),
            {},
            {},
            {}};
    for (int run = 0; run < 5; ++run)
        row.ours.values.append(timeBeyond(UpgradePlan::Both));
    results.add(row);
    return 0;
}
