// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Every fault through a whole run, at every plan and on both models:
//   fault_cells                  lists the cells of that table
//   fault_cells --all FOLDER     writes the scenario of each into the folder
//   fault_cells CELL             prints the scenario of one
#include "tests/run/faults/CellScenario.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstring>

namespace {

int list()
{
    for (const faults::Cell &cell : faults::allCells())
        std::puts(qPrintable(nameOf(cell)));
    return 0;
}

int print(const QString &name)
{
    for (const faults::Cell &cell : faults::allCells()) {
        if (nameOf(cell) == name) {
            std::fputs(scenarioOf(cell).toUtf8().constData(), stdout);
            return 0;
        }
    }
    std::fprintf(stderr, "There is no cell \"%s\".\n", qPrintable(name));
    return 1;
}

int writeAll(const QDir &folder)
{
    for (const faults::Cell &cell : faults::allCells()) {
        QFile file(folder.filePath(nameOf(cell) + QStringLiteral(".scn")));
        const QByteArray text = scenarioOf(cell).toUtf8();
        if (!folder.mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly)
            || file.write(text) != text.size()) {
            std::fprintf(stderr, "Cannot write %s.\n", qPrintable(file.fileName()));
            return 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 1)
        return list();
    if (argc == 2)
        return print(QString::fromLocal8Bit(argv[1]));
    if (argc == 3 && std::strcmp(argv[1], "--all") == 0)
        return writeAll(QDir(QString::fromLocal8Bit(argv[2])));
    std::fputs("usage: fault_cells [CELL | --all FOLDER]\n", stderr);
    return 2;
}
