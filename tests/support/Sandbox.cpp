// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Sandbox.h"

#include <QFile>
#include <QFileInfo>

Sandbox::Sandbox()
    : m_formerHome(qgetenv("HOME"))
    , m_formerAllUsers(qgetenv("ALLUSERSPROFILE"))
{
#ifdef Q_OS_WIN
    if (!qEnvironmentVariableIsSet("QUILLON_THROWAWAY_HOME"))
        qFatal("this test would write into %s", qPrintable(QDir::homePath()));
#endif
    const QDir folder(m_folder.path());
    folder.mkpath(QStringLiteral("home"));
    folder.mkpath(QStringLiteral("all"));
    qputenv("HOME", QFile::encodeName(folder.filePath(QStringLiteral("home"))));
    qputenv("ALLUSERSPROFILE", QFile::encodeName(folder.filePath(QStringLiteral("all"))));
    m_home = QDir::homePath();
    m_formerEntries = entriesOfHome();
}

Sandbox::~Sandbox()
{
#ifdef Q_OS_WIN
    const QDir folder(m_home);
    const QStringList entries = newInHome();
    for (const QString &name : entries)
        QFileInfo(folder, name).isDir() ? QDir(folder.filePath(name)).removeRecursively()
                                        : QFile::remove(folder.filePath(name));
    QDir(QFileInfo(progressFile()).path()).removeRecursively();
#endif
    qputenv("HOME", m_formerHome);
    qputenv("ALLUSERSPROFILE", m_formerAllUsers);
}

QString Sandbox::home() const
{
    return m_home;
}

QString Sandbox::progressFile() const
{
    return home() + QStringLiteral("/AppData/Roaming/OrvikQuillon2x2/Firmware_bin.txt");
}

QString Sandbox::downloadFolder() const
{
    return QDir(m_folder.path()).filePath(QStringLiteral("all/Orvik/Orvik Link/orvikExe"));
}

QStringList Sandbox::newInHome() const
{
    QStringList entries = entriesOfHome();
    for (const QString &name : m_formerEntries)
        entries.removeOne(name);
    return entries;
}

QStringList Sandbox::entriesOfHome() const
{
    return QDir(m_home).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

void Sandbox::writeProgress(const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(progressFile()).path());
    QFile file(progressFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(progressFile()));
}
