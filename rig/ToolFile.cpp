// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ToolFile.h"

#include <QCoreApplication>
#include <QFile>

namespace rig {

ToolFile::ToolFile(FaultBoard &faults, Journal &journal)
    : m_faults(faults)
    , m_journal(journal)
{
    setPath(QCoreApplication::applicationDirPath() + QStringLiteral("/OrvikFirmwareUpdata.exe"));
    connect(&m_faults, &FaultBoard::changed, this, &ToolFile::follow);
}

ToolFile::~ToolFile()
{
    setMissing(false);
    setExecutable(true);
}

void ToolFile::setPath(const QString &path)
{
    if (!m_path.isEmpty()) {
        setMissing(false);
        setExecutable(true);
    }
    m_path = path;
    m_permission = std::make_unique<RunPermission>(path);
    follow();
}

void ToolFile::follow()
{
    setMissing(m_faults.isArmed(Fault::ToolMissing));
    setExecutable(!m_faults.isArmed(Fault::ToolNotExecutable));
}

QString ToolFile::asidePath() const
{
    return m_path + QStringLiteral(".aside");
}

void ToolFile::setMissing(bool missing)
{
    const QString from = missing ? m_path : asidePath();
    const QString to = missing ? asidePath() : m_path;
    if (QFile::exists(from) && !QFile::exists(to) && QFile::rename(from, to))
        m_journal.record(QStringLiteral("tool file"),
                         missing ? QStringLiteral("taken away") : QStringLiteral("put back"));
}

void ToolFile::setExecutable(bool executable)
{
    if (!QFile::exists(m_path) || m_permission->isGranted() == executable)
        return;
    m_permission->set(executable);
    if (m_permission->isGranted() != executable)
        return;
    m_journal.record(QStringLiteral("tool file"),
                     executable ? QStringLiteral("may be run again") : QStringLiteral("may not be run"));
}

} // namespace rig
