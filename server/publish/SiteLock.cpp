// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/SiteLock.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace publish {

SiteLock::~SiteLock()
{
    if (m_file >= 0)
        ::close(m_file);
}

bool SiteLock::take(const QString &folder, QString *error)
{
    const QString path = folder + QStringLiteral("/lock");
    m_file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_file < 0) {
        *error = path + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    if (::flock(m_file, LOCK_EX | LOCK_NB) == 0)
        return true;
    *error = QStringLiteral("another quillon-publish is at work in ") + folder;
    return false;
}

} // namespace publish
