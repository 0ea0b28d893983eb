#include "tests/support/Sandbox.h"

#include <QFile>
#include <QFileInfo>

Sandbox::Sandbox()
    : m_formerHome(qgetenv("HOME"))
    , m_formerAllUsers(qgetenv("ALLUSERSPROFILE"))
{
    const QDir folder(m_folder.path());
    folder.mkpath(QStringLiteral("home"));
    folder.mkpath(QStringLiteral("all"));
    qputenv("HOME", QFile::encodeName(folder.filePath(QStringLiteral("home"))));
    qputenv("ALLUSERSPROFILE", QFile::encodeName(folder.filePath(QStringLiteral("all"))));
}

Sandbox::~Sandbox()
{
    qputenv("HOME", m_formerHome);
    qputenv("ALLUSERSPROFILE", m_formerAllUsers);
}

QString Sandbox::home() const
{
    return QDir(m_folder.path()).filePath(QStringLiteral("home"));
}

QString Sandbox::progressFile() const
{
    return home() + QStringLiteral("/AppData/Roaming/OrvikQuillon2x2/Firmware_bin.txt");
}

QString Sandbox::downloadFolder() const
{
    return QDir(m_folder.path()).filePath(QStringLiteral("all/Orvik/Orvik Link/orvikExe"));
}

void Sandbox::writeProgress(const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(progressFile()).path());
    QFile file(progressFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(progressFile()));
}
