// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Terminal.h"

#include <QFile>

#include <cstdio>

namespace host::Terminal {

namespace {
void write(std::FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
    std::fflush(stream);
}
} // namespace

QStringList arguments(int argc, char *argv[])
{
    QStringList words;
    for (int at = 0; at < argc; ++at)
        words.append(QFile::decodeName(argv[at]));
    return words;
}

void setVariable(const char *name, const QString &value)
{
    qputenv(name, QFile::encodeName(value));
}

void print(const QString &line)
{
    write(stdout, line);
}

void complain(const QString &line)
{
    write(stderr, QStringLiteral("quillon-host: ") + line);
}

} // namespace host::Terminal
