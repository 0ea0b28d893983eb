// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the screen costs that is shown for as long as a user looks for a cable: processor time a second of the
// animation, and memory. The screen's scale comes from QT_SCALE_FACTOR.

#include "panel/FirmwareUpgradeWidget.h"

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <ctime>

using namespace std::chrono_literals;
using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;

namespace {
constexpr std::chrono::seconds kSettling = 4s; // more than one loop
constexpr std::chrono::seconds kMeasured = 9s; // three loops

double processorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// A line of what the kernel says about this process: "VmRSS" and the like.
QByteArray statusOf(const QByteArray &name)
{
    const QByteArray beginning = name + ':';
    QFile file(QStringLiteral("/proc/self/status"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    for (const QByteArray &line : isOpen ? file.readAll().split('\n') : QByteArrayList()) {
        if (line.startsWith(beginning))
            return line.mid(beginning.size()).simplified();
    }
    return {};
}

void run(std::chrono::milliseconds time)
{
    QTimer::singleShot(time, Qt::PreciseTimer, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("quillon.*=false"));
    QLoggingCategory::setFilterRules(QStringLiteral("quillon.*=false"));
    FirmwareUpgradeWidget panel;
    panel.show();
    run(kSettling);
    const QByteArray before = statusOf("VmRSS");
    const double idleStart = processorMilliseconds();
    run(kMeasured);
    const double idle = processorMilliseconds() - idleStart;
    panel.showWaitingScreen(FirmwareUpgradeWidget::Port::Otg);
    run(kSettling);
    const double start = processorMilliseconds();
    run(kMeasured);
    const double waiting = processorMilliseconds() - start;
    std::printf(
        "scale %.2f: %.1f ms of the processor a second, %.1f when nothing moves; %s resident, %s before; "
        "%s threads\n",
        panel.devicePixelRatio(), waiting / double(kMeasured.count()), idle / double(kMeasured.count()),
        statusOf("VmRSS").constData(), before.constData(), statusOf("Threads").constData());
    return 0;
}
