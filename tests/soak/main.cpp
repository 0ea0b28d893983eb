// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Prints the storm of a seed: a scenario for quillon-host.
#include "tests/soak/Storm.h"

#include <QString>

#include <cstdio>

int main(int argc, char *argv[])
{
    bool isNumber = false;
    const quint32 seed = argc == 2 ? QString::fromLocal8Bit(argv[1]).toUInt(&isNumber) : 0;
    if (!isNumber) {
        std::fputs("usage: storm SEED\n", stderr);
        return 2;
    }
    std::fputs(soak::storm(seed).toUtf8().constData(), stdout);
    return 0;
}
