// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a panel costs that nobody touches: processor time and wake-ups of the whole process, without a device
// and with one, in turns with a window that does nothing.
#include "bench/ProcessorTime.h"
#include "bench/Results.h"
#include "bench/SilencedPanel.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "tests/support/MockBus.h"
#include "tests/support/ProgramThreads.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QApplication>
#include <QEventLoop>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <memory>

using namespace std::chrono_literals;
using HIDCommunicator::OrvikHIDManager;
using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;

namespace {
struct Cost {
    Samples processor; // ms a minute
    Samples wakeUps; // a second
};

void run(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

qint64 sleeps()
{
    qint64 sum = 0;
    for (const int thread : ProgramThreads::all())
        sum += ProgramThreads::sleeps(thread);
    return sum;
}

/// Until what \a window does at first is over, and then what \a time costs.
void measure(QWidget &window, std::chrono::milliseconds time, Cost &cost)
{
    window.show();
    run(std::min<std::chrono::milliseconds>(2s, time));
    const double seconds = std::chrono::duration<double>(time).count();
    const double processorBefore = processorMilliseconds();
    const qint64 sleepsBefore = sleeps();
    run(time);
    cost.processor.values.append((processorMilliseconds() - processorBefore) * 60 / seconds);
    cost.wakeUps.values.append(double(sleeps() - sleepsBefore) / seconds);
}

void measureWindow(std::chrono::milliseconds time, Cost &cost)
{
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setFixedSize(472, 418);
    measure(window, time, cost);
}

void measurePanel(std::chrono::milliseconds time, Cost &cost)
{
    FirmwareUpgradeWidget panel;
    measure(panel, time, cost);
}

void measurePanelWithDevice(MockBus &bus, std::chrono::milliseconds time, Cost &cost)
{
    FirmwareUpgradeWidget panel;
    run(300ms);
    const auto device = bus.plug();
    for (int tries = 0; tries < 50 && !OrvikHIDManager::instance()->getConnected(); ++tries)
        run(100ms);
    if (!OrvikHIDManager::instance()->getConnected())
        giveUp("the panel opens no device");
    measure(panel, time, cost);
}

void add(const Results &results, const QString &what, const Cost &ours, const Cost &bare,
         const QString &timeLimit, const QString &wakeUpLimit)
{
    const QString peer = QStringLiteral("a bare window");
    results.add({what + QStringLiteral(": processor time"), QStringLiteral("ms a minute"), timeLimit,
                 ours.processor, peer, bare.processor});
    results.add({what + QStringLiteral(": wake-ups"), QStringLiteral("a second"), wakeUpLimit, ours.wakeUps,
                 peer, bare.wakeUps});
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    silencePanel();
    const Results results(QCoreApplication::arguments());
    MockBus bus;
    if (!bus.isShown())
        giveUp("to be started by umockdev-wrapper");
    const std::chrono::milliseconds time(results.count(20'000, 100));
    Cost bare;
    Cost alone;
    Cost connected;
    for (int turn = 0; turn < results.count(3, 1); ++turn) {
        measureWindow(time, bare);
        measurePanel(time, alone);
        measurePanelWithDevice(bus, time, connected);
    }
    add(results, QStringLiteral("panel without a device, idle"), alone, bare, QStringLiteral("12"),
        QString());
    add(results, QStringLiteral("panel with its device, idle"), connected, bare, QStringLiteral("20"),
        QStringLiteral("1.5"));
    return 0;
}
