// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/CommandLine.h"
#include "host/Fonts.h"
#include "host/Session.h"
#include "host/Style.h"
#include "host/Terminal.h"

#include <QApplication>

namespace {

using namespace host;

bool hasDisplay()
{
#ifdef Q_OS_LINUX
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

int refuse(const QString &message)
{
    Terminal::complain(message);
    return kStatusWrong;
}

int run(const Options &options, const std::optional<rig::Scenario> &scenario)
{
    substituteMissingFonts();
    makeApplicationDark();
    Session session(options, scenario);
    QString error;
    if (!session.start(&error))
        return refuse(error);
    QApplication::exec();
    return session.status();
}

} // namespace

int main(int argc, char *argv[])
{
    const CommandLine line = readCommandLine(Terminal::arguments(argc, argv));
    if (line.verdict == CommandLine::Verdict::Help) {
        Terminal::print(line.message.trimmed());
        return kStatusDone;
    }
    if (line.verdict == CommandLine::Verdict::Wrong)
        return refuse(line.message);

    std::optional<rig::Scenario> scenario;
    if (QString error; !line.options.scenario.isEmpty()) {
        scenario = rig::Scenario::load(line.options.scenario, &error);
        if (!scenario)
            return refuse(error);
    }
    if (line.options.headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    else if (!hasDisplay())
        return refuse(QStringLiteral("there is no display; play a scenario with --headless"));

    QApplication application(argc, argv);
    return run(line.options, scenario);
}
