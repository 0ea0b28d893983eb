// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/FakeFlashingTool.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace {
constexpr char kScript[] = "QUILLON_FAKE_TOOL";

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}
} // namespace

FakeFlashingTool::FakeFlashingTool()
{
    remove();
    if (!QFile::copy(QStringLiteral(QUILLON_FAKE_FLASHING_TOOL), path()))
        qFatal("cannot lay %s", qPrintable(path()));
}

FakeFlashingTool::~FakeFlashingTool()
{
    qunsetenv(kScript);
    remove();
}

QString FakeFlashingTool::path()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/OrvikFirmwareUpdata.exe");
}

void FakeFlashingTool::obeys(const QByteArray &script)
{
    qputenv(kScript, script);
}

void FakeFlashingTool::signal(const QString &name)
{
    write(QDir::home().filePath(name), QByteArray());
}

void FakeFlashingTool::remove()
{
    m_forbidden.reset();
    QFile::remove(path());
}

void FakeFlashingTool::forbid()
{
    QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner);
    // Windows runs what it can read, whatever the permissions.
    m_forbidden = std::make_unique<HeldFile>(path(), HeldFile::Share::Nothing);
}

void FakeFlashingTool::replaceBy(const QByteArray &content)
{
    const QFile::Permissions permissions = QFile::permissions(path());
    remove();
    write(path(), content);
    QFile::setPermissions(path(), permissions);
}

QList<FakeFlashingTool::Run> FakeFlashingTool::runs()
{
    QFile file(QDir::home().filePath(QStringLiteral("flashing-tool-runs.txt")));
    QList<Run> runs;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return runs;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        QStringList fields = line.split(u'\t');
        const QString workingDirectory = fields.takeFirst();
        runs.append({workingDirectory, fields});
    }
    return runs;
}
