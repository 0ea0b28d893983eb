// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"

#include <QFileInfo>

#include <cstdio>
#include <limits>
#include <map>
#include <string>

namespace {
std::map<std::string, TestProgram::Player> &players()
{
    static std::map<std::string, TestProgram::Player> known;
    return known;
}

int complain(const char *program)
{
    std::fprintf(stderr, "usage: %s TEST [OPTION OF QT TEST...], where TEST is one of\n", program);
    for (const auto &entry : players())
        std::fprintf(stderr, "  %s\n", entry.first.c_str());
    return 2;
}
} // namespace

TestProgram::Entry::Entry(const char *sourceFile, Player player)
{
    static const QLatin1StringView prefix("tst_");
    const QString name = QFileInfo(QString::fromLocal8Bit(sourceFile)).baseName();
    if (!name.startsWith(prefix)
        || !players().emplace(name.sliced(prefix.size()).toStdString(), player).second)
        qFatal("%s: not tst_NAME.cpp, or the second one of that name", sourceFile);
}

namespace {
/// Qt Test's watchdog misses the end of a function when the next one begins at once, and then counts both as
/// one: on a busy machine it ended whole programs after five minutes of their clock. Each test has its limit
/// already.
void letNobodyElseCount()
{
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
}
} // namespace

int main(int argc, char *argv[])
{
    letNobodyElseCount();
    const auto found = argc < 2 ? players().end() : players().find(argv[1]);
    if (found == players().end())
        return complain(argv[0]);
    argv[1] = argv[0];
    return found->second(argc - 1, argv + 1);
}
