#include "tests/support/TestProgram.h"

#include <QFileInfo>

#include <cstdio>
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

int main(int argc, char *argv[])
{
    const auto found = argc < 2 ? players().end() : players().find(argv[1]);
    if (found == players().end())
        return complain(argv[0]);
    argv[1] = argv[0];
    return found->second(argc - 1, argv + 1);
}
