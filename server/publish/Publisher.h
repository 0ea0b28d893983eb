// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "server/publish/Project.h"
#include "server/publish/Release.h"
#include "server/publish/Site.h"

#include <QString>

#include <optional>

namespace publish {

/// Changes a site. Each function does all that it was asked for or, when it returns nothing, changed nothing
/// that is served and left one line in \a error. Killed at any moment it leaves the former state or the new
/// one; what else it leaves behind is cleared away by the next one.
class Publisher {
public:
    explicit Publisher(const Site &site)
        : m_site(site)
    {
    }

    /// Puts a copy of \a image, with what is told about it, in place of what is served. Refuses an empty
    /// image, and a version that is not newer than the served one unless \a force.
    std::optional<Published> add(const Project &project, const Release &release, const QString &image,
                                 bool force, QString *error);

    /// Serves again what was served before the present one came. Refuses where that is not there or not
    /// whole.
    std::optional<Published> rollBack(const Project &project, QString *error);

private:
    bool layOut(const Project &project, QString *error) const;
    bool fill(const QString &folder, const Release &release, const QString &image, Published &published,
              QString *error) const;
    QString nextFolder(const QString &project, const QVersionNumber &version) const;
    bool serve(const QString &project, const Published &published, QString *error) const;

    Site m_site;
};

} // namespace publish
