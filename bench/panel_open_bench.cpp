// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a person waits for who opens the panel: the time until its first picture is painted. Measured beside a
// window that only shows the same, in turns, in one process, which is warm after the first turn, and each
// time in a process of its own, which is cold.
#include "bench/BareWindow.h"
#include "bench/Opening.h"
#include "bench/Results.h"
#include "bench/SilencedPanel.h"

#include "panel/FirmwareUpgradeWidget.h"

#include <QApplication>
#include <QDataStream>
#include <QFile>
#include <QProcess>
#include <QTemporaryFile>

#include <cstdio>

using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;

namespace {
BareWindow describePanel()
{
    const FirmwareUpgradeWidget panel;
    return BareWindow(panel);
}

void measureWarm(const Results &results, const BareWindow &bare)
{
    Row row{QStringLiteral("open to first paint, warm"),
            QStringLiteral("ms"),
            QStringLiteral("ratio 1.15"),
            {},
            QStringLiteral("a bare window with the same children"),
            {}};
    const int times = results.count(300, 10);
    for (int turn = -5; turn < times; ++turn) {
        const double ours = timeToPaint(makePanel);
        const double peer = timeToPaint([&] { return bare.create(); });
        if (turn < 0)
            continue;
        row.ours.values.append(ours);
        row.peers.values.append(peer);
    }
    results.add(row);
}

/// The first opening of a fresh process, as its only line of output says.
double inFreshProcess(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        giveUp("a fresh process");
    return process.readAll().toDouble();
}

void measureCold(const Results &results, const BareWindow &bare)
{
    QTemporaryFile file;
    if (!file.open())
        giveUp("writing down the bare window");
    QDataStream stream(&file);
    stream << bare;
    file.flush();
    Row row{QStringLiteral("open to first paint, cold"),
            QStringLiteral("ms"),
            QStringLiteral("ratio 1.15"),
            {},
            QStringLiteral("a bare window with the same children"),
            {}};
    const int times = results.count(60, 1);
    for (int turn = 0; turn < times; ++turn) {
        row.ours.values.append(inFreshProcess({QStringLiteral("--open-panel")}));
        row.peers.values.append(inFreshProcess({QStringLiteral("--open-bare"), file.fileName()}));
    }
    results.add(row);
}

int openOnce(const QStringList &arguments)
{
    if (arguments.at(1) == QStringLiteral("--open-panel")) {
        std::printf("%f\n", timeToPaint(makePanel));
        return 0;
    }
    BareWindow bare;
    QFile file(arguments.value(2));
    if (!file.open(QIODevice::ReadOnly))
        giveUp("reading the bare window");
    QDataStream stream(&file);
    stream >> bare;
    std::printf("%f\n", timeToPaint([&] { return bare.create(); }));
    return 0;
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    silencePanel();
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1).startsWith(QStringLiteral("--open-")))
        return openOnce(arguments);
    const Results results(arguments);
    const BareWindow bare = describePanel();
    measureWarm(results, bare);
    measureCold(results, bare);
    return 0;
}
