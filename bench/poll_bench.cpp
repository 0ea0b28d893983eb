// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What one look at the flashing tool's progress file costs, of which there are ten a second: processor time,
// beside the system calls that no reader of a file can do without, in turns; and what it asks the heap for.
#include "bench/CountedAllocations.h"
#include "bench/Results.h"
#include "bench/SilencedPanel.h"
#include "flash/ProgressFile.h"
#include "panel/FirmwareUpgradeWidget.h"

#include <QApplication>
#include <QFile>
#include <QStringList>

#include <chrono>

#include <fcntl.h>
#include <unistd.h>

using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;

namespace {
using Clock = std::chrono::steady_clock;

constexpr int kPollsOfBlock = 200;

/// How many microseconds one call of \a once takes.
template <typename Once> double timeOf(const Once &once)
{
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < kPollsOfBlock; ++i)
        once();
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / kPollsOfBlock;
}

void openReadClose(const QByteArray &path)
{
    char line[16];
    const int file = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0 || ::read(file, line, sizeof line) <= 0)
        giveUp("reading the progress file");
    ::close(file);
}

void writeProgress()
{
    QFile file(ProgressFile::pathWithFolder());
    if (!file.open(QIODevice::WriteOnly) || file.write("55%\n") < 0)
        giveUp("writing the progress file");
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    silencePanel();
    const Results results(QCoreApplication::arguments());
    FirmwareUpgradeWidget panel;
    writeProgress();
    const QByteArray path = QFile::encodeName(ProgressFile::path());
    panel.m_lastProgressPercent = 55; // seen before, and nothing stalls without the time it was seen at

    Row time{QStringLiteral("poll of the progress file"),
             QStringLiteral("us"),
             QStringLiteral("ratio 6"),
             {},
             QStringLiteral("open, read, close"),
             {}};
    const int blocks = results.count(300, 3);
    for (int block = -1; block < blocks; ++block) {
        const double ours = timeOf([&] { panel.onReadFirmwareTxt(); });
        const double peer = timeOf([&] { openReadClose(path); });
        if (block < 0)
            continue;
        time.ours.values.append(ours);
        time.peers.values.append(peer);
    }
    results.add(time);

    const qint64 callsBefore = CountedAllocations::calls();
    const qint64 bytesBefore = CountedAllocations::bytes();
    panel.onReadFirmwareTxt();
    const double calls = double(CountedAllocations::calls() - callsBefore);
    const double bytes = double(CountedAllocations::bytes() - bytesBefore);
    results.add(
        {QStringLiteral("allocations of a poll"), QString(), QStringLiteral("20"), {{calls}}, {}, {}});
    results.add(
        {QStringLiteral("asked for by a poll"), QStringLiteral("bytes"), QString(), {{bytes}}, {}, {}});
    return 0;
}
