// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/Folders.h"

#include "host/Terminal.h"

#include <QDir>
#include <QStandardPaths>

namespace host {

namespace {
constexpr char kAllUsers[] = "ALLUSERSPROFILE";

void pointTo(const char *variable, const QString &folder)
{
    QDir().mkpath(folder);
    Terminal::setVariable(variable, folder);
}
} // namespace

Folders::Folders(Kind kind)
{
    if (kind == Kind::ForSimulation) {
        m_temporary = std::make_unique<QTemporaryDir>();
        if (!m_temporary->isValid())
            return;
        pointTo("HOME", m_temporary->filePath(QStringLiteral("home")));
        pointTo("USERPROFILE", m_temporary->filePath(QStringLiteral("home")));
        pointTo(kAllUsers, m_temporary->filePath(QStringLiteral("all-users")));
        // Scenarios look at what is left in there, and other programs are to have no part in it.
        for (const char *variable : {"TMPDIR", "TMP", "TEMP"})
            pointTo(variable, m_temporary->filePath(QStringLiteral("temporary")));
    } else if (qEnvironmentVariableIsEmpty(kAllUsers)) {
        // Windows always has it; elsewhere the panel would download into the root folder.
        pointTo(kAllUsers, QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    }
}

bool Folders::isValid() const
{
    return !m_temporary || m_temporary->isValid();
}

} // namespace host
