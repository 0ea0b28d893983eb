// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Prints the scenario of a day: so many upgrades by the same panel.
#include "tests/soak/Day.h"

#include <QString>

#include <cstdio>

int main(int argc, char *argv[])
{
    bool isCount = false;
    bool isSeed = false;
    const int upgrades = argc == 3 ? QString::fromLocal8Bit(argv[1]).toInt(&isCount) : 0;
    const quint32 seed = argc == 3 ? QString::fromLocal8Bit(argv[2]).toUInt(&isSeed) : 0;
    if (!isCount || !isSeed || upgrades < 1) {
        std::fputs("usage: day UPGRADES SEED\n", stderr);
        return 2;
    }
    std::fputs(soak::day(upgrades, seed).toUtf8().constData(), stdout);
    return 0;
}
