#include "host/Terminal.h"

#include <cstdio>

namespace host::Terminal {

namespace {
void write(std::FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
    std::fflush(stream);
}
} // namespace

void print(const QString &line)
{
    write(stdout, line);
}

void complain(const QString &line)
{
    write(stderr, QStringLiteral("quillon-host: ") + line);
}

} // namespace host::Terminal
