// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A host that loads a plug-in with the panel in it, unloads it again, goes on for a while and ends:
//   unloading_host PLUGIN
// Its status tells where it failed; a crash speaks for itself.
#include <QApplication>
#include <QEventLoop>
#include <QLibrary>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <memory>

using namespace std::chrono_literals;

namespace {

enum Status { Passed, NotLoaded, NotUnloaded };

void goOnFor(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// The panel asks the bus and the server meanwhile.
bool showPanelOf(QLibrary &plugin)
{
    const auto createPanel = reinterpret_cast<QWidget *(*)()>(plugin.resolve("createPanel"));
    if (!createPanel)
        return false;
    const std::unique_ptr<QWidget> panel(createPanel());
    panel->show();
    goOnFor(1500ms);
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QLibrary plugin(application.arguments().value(1));
    for (int round = 0; round < 2; ++round) {
        if (!showPanelOf(plugin))
            return NotLoaded;
        if (!plugin.unload())
            return NotUnloaded;
        goOnFor(300ms);
    }
    return Passed;
}
