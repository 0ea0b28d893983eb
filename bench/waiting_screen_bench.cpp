// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the screen costs that is shown for as long as a user looks for a cable: processor time a second of the
// animation, beside Qt's own label with the same movie, in turns. The scale comes from QT_SCALE_FACTOR.
#include "bench/ProcessorTime.h"
#include "bench/Results.h"
#include "bench/SilencedPanel.h"
#include "panel/FirmwareUpgradeWidget.h"

#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QMovie>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <chrono>

using namespace std::chrono_literals;
using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;

namespace {
constexpr std::chrono::milliseconds kLoop = 3s; // of the movie

void run(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Milliseconds of the processor in each second, once the first loop is over.
double costOf(QWidget &window, std::chrono::milliseconds time)
{
    window.show();
    run(time);
    const double before = processorMilliseconds();
    run(time);
    return (processorMilliseconds() - before) / std::chrono::duration<double>(time).count();
}

double costOfPanel(std::chrono::milliseconds time)
{
    FirmwareUpgradeWidget panel;
    panel.showWaitingScreen(FirmwareUpgradeWidget::Port::Otg);
    return costOf(panel, time);
}

double costOfLabel(std::chrono::milliseconds time)
{
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setFixedSize(472, 418);
    QLabel label(&window);
    label.setGeometry(32, 59, 408, 128);
    label.setScaledContents(true);
    QMovie movie(QStringLiteral(":/new/prefix1/image/dc5v_otg.gif"));
    label.setMovie(&movie);
    movie.start();
    return costOf(window, time);
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    silencePanel();
    const Results results(QCoreApplication::arguments());
    const std::chrono::milliseconds time = results.isShort() ? 100ms : kLoop;
    Row row{QStringLiteral("animation at scale %1").arg(qGuiApp->devicePixelRatio()),
            QStringLiteral("ms a second"),
            QString(),
            {},
            QStringLiteral("QLabel with QMovie"),
            {}};
    for (int turn = 0; turn < results.count(4, 1); ++turn) {
        row.ours.values.append(costOfPanel(time));
        row.peers.values.append(costOfLabel(time));
    }
    results.add(row);
    return 0;
}
