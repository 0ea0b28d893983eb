#include "rig/ToolFile.h"

#include <QCoreApplication>
#include <QFile>

namespace rig {

namespace {
constexpr QFile::Permissions kRunning = QFile::ExeOwner | QFile::ExeUser | QFile::ExeGroup | QFile::ExeOther;
} // namespace

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
    const QFile::Permissions had = QFile::permissions(m_path);
    if (!QFile::exists(m_path) || bool(had & kRunning) == executable)
        return;
    QFile::setPermissions(m_path, executable ? had | kRunning : had & ~kRunning);
    m_journal.record(QStringLiteral("tool file"),
                     executable ? QStringLiteral("may be run again") : QStringLiteral("may not be run"));
}

} // namespace rig
