// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/RunPermission.h"

#include <QFile>

namespace rig {

namespace {
constexpr QFile::Permissions kRunning = QFile::ExeOwner | QFile::ExeUser | QFile::ExeGroup | QFile::ExeOther;
} // namespace

RunPermission::RunPermission(const QString &path)
    : m_path(path)
{
}

RunPermission::~RunPermission() = default;

bool RunPermission::isGranted() const
{
    return bool(QFile::permissions(m_path) & kRunning);
}

void RunPermission::set(bool granted)
{
    const QFile::Permissions had = QFile::permissions(m_path);
    QFile::setPermissions(m_path, granted ? had | kRunning : had & ~kRunning);
}

} // namespace rig
