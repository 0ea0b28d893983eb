// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The stand-in for the flashing tool that ships beside the host: the same command line, the same progress
// file, and the simulated device's boot loader in place of a real one.

#include "rig/tool/FlashRun.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments().mid(1);
    const auto options = tool::ToolOptions::from(arguments);
    if (!options) {
        std::fputs("usage: OrvikFirmwareUpdata.exe IMAGE --pid HHHH [--already-in-dfu]\n", stderr);
        return tool::FlashRun::Usage;
    }
    return tool::FlashRun(*options, arguments).execute();
}
