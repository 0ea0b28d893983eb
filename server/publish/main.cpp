// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/Commands.h"

#include <QCoreApplication>

#include <sys/stat.h>

int main(int argc, char *argv[])
{
    using namespace publish;
    // The web server is another user, whoever publishes.
    ::umask(022);
    const QCoreApplication application(argc, argv);
    const CommandLine line = readCommandLine(QCoreApplication::arguments());
    switch (line.verdict) {
    case CommandLine::Verdict::Help:
        print(line.message.trimmed());
        return kStatusDone;
    case CommandLine::Verdict::Wrong:
        complain(line.message);
        return kStatusWrong;
    case CommandLine::Verdict::Run:
        break;
    }
    return run(line.options);
}
