// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/Project.h"

#include "device/ModelTable.h"

#include <QStringList>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>

namespace publish {

namespace {

Project projectFrom(const QString &model, const QString &chip, QLatin1String versionPath)
{
    const QUrlQuery query(QUrl{versionPath});
    return {model, chip, query.queryItemValue(QStringLiteral("proj_name"))};
}

} // namespace

const QList<Project> &projects()
{
    static const QList<Project> all = [] {
        QList<Project> list;
        for (const auto &row : QuillonFirmwareUpgrade::modelRows()) {
            list << projectFrom(row.code, QStringLiteral("pc"), row.pc.versionPath)
                 << projectFrom(row.code, QStringLiteral("otg"), row.otg.versionPath);
        }
        return list;
    }();
    return all;
}

QStringList modelNames()
{
    QStringList names;
    for (const Project &project : projects())
        names.append(project.model);
    names.removeDuplicates();
    return names;
}

std::optional<Project> projectOf(const QString &model, const QString &chip)
{
    const auto found = std::find_if(projects().begin(), projects().end(), [&](const Project &project) {
        return project.model.compare(model, Qt::CaseInsensitive) == 0
            && project.chip.compare(chip, Qt::CaseInsensitive) == 0;
    });
    return found == projects().end() ? std::nullopt : std::optional(*found);
}

} // namespace publish
