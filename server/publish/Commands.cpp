// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/Commands.h"

#include "server/publish/Publisher.h"

#include <QFileInfo>

#include <cstdio>

namespace publish {

namespace {

QString nameOf(const Project &project)
{
    return project.model + u' ' + project.chip;
}

/// Tells what came of it; returns the exit status.
int conclude(const std::optional<Published> &now, const QString &what, const QString &error)
{
    if (!now) {
        complain(error);
        return kStatusFailed;
    }
    print(what.arg(now->version.toString()));
    return kStatusDone;
}

int add(const Options &options)
{
    QString error;
    const auto now = Publisher(Site(options.site))
                         .add(options.project, options.release, options.image, options.force, &error);
    return conclude(now, nameOf(options.project) + QStringLiteral(": %1 is served now"), error);
}

int rollBack(const Options &options)
{
    QString error;
    const auto now = Publisher(Site(options.site)).rollBack(options.project, &error);
    return conclude(now, nameOf(options.project) + QStringLiteral(": %1 is served again"), error);
}

QString describeServed(const Site &site, const Project &project, const Published &now)
{
    QString line = QStringLiteral("%1 since %2, %3 bytes, SHA-256 %4")
                       .arg(now.version.toString(), now.at.toString(QStringLiteral("yyyy-MM-dd HH:mm 'UTC'")))
                       .arg(now.size)
                       .arg(QLatin1StringView(now.sha256));
    if (const auto former = site.published(project.name, now.before))
        line += QStringLiteral("; before it %1").arg(former->version.toString());
    return line;
}

int tellStatus(const Options &options)
{
    if (!QFileInfo(options.site).isDir()) {
        complain(options.site + QStringLiteral(" is no folder"));
        return kStatusFailed;
    }
    const Site site(options.site);
    int status = kStatusDone;
    for (const Project &project : projects()) {
        const auto now = site.served(project.name);
        QString line = QStringLiteral("nothing is published");
        if (now)
            line = describeServed(site, project, *now);
        const bool isDamaged = now ? !site.isWhole(project.name, *now) : site.isTaken(project.name);
        if (isDamaged) {
            line += QStringLiteral("; DAMAGED");
            status = kStatusFailed;
        }
        print(nameOf(project).leftJustified(7) + line);
    }
    return status;
}

} // namespace

int run(const Options &options)
{
    switch (options.command) {
    case Options::Command::Add:
        return add(options);
    case Options::Command::RollBack:
        return rollBack(options);
    case Options::Command::Status:
        break;
    }
    return tellStatus(options);
}

void print(const QString &line)
{
    std::puts(line.toLocal8Bit().constData());
}

void complain(const QString &line)
{
    std::fputs(QByteArray("quillon-publish: " + line.toLocal8Bit() + '\n').constData(), stderr);
}

} // namespace publish
