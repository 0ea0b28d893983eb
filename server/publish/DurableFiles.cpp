// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/DurableFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace DurableFiles {

namespace {

constexpr qint64 kPiece = qint64(1024) * 1024;

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
}

bool complain(const QString &path, const QString &why, QString *error)
{
    *error = path + QStringLiteral(": ") + why;
    return false;
}

bool complainOfSystem(const QString &path, QString *error)
{
    return complain(path, QString::fromLocal8Bit(std::strerror(errno)), error);
}

/// What was created, renamed or removed in a folder is on the disk once the folder is.
bool keepFolder(const QString &path, QString *error)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return complainOfSystem(path, error);
    const bool kept = ::fsync(folder) == 0;
    if (!kept)
        complainOfSystem(path, error);
    ::close(folder);
    return kept;
}

bool save(const QString &path, const std::function<bool(QSaveFile &file)> &fill, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return complain(path, file.errorString(), error);
    // An image that cannot be read has told why already.
    if (!fill(file))
        return error->isEmpty() ? complain(path, file.errorString(), error) : false;
    if (!file.commit())
        return complain(path, file.errorString(), error);
    return keepFolder(folderOf(path), error);
}

} // namespace

bool makeFolder(const QString &path, QString *error)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString above = folderOf(path);
    if (!makeFolder(above, error))
        return false;
    if (!QDir(above).mkdir(QFileInfo(path).fileName()))
        return complain(path, QStringLiteral("cannot make this folder"), error);
    return keepFolder(above, error);
}

bool write(const QString &path, const QByteArray &content, QString *error)
{
    return save(
        path, [&](QSaveFile &file) { return file.write(content) == content.size(); }, error);
}

bool copy(const QString &source, const QString &path, QString *error)
{
    QFile from(source);
    if (!from.open(QIODevice::ReadOnly))
        return complain(source, from.errorString(), error);
    const auto fill = [&](QSaveFile &file) {
        while (!from.atEnd()) {
            const QByteArray piece = from.read(kPiece);
            if (piece.isEmpty())
                return complain(source, from.errorString(), error);
            if (file.write(piece) != piece.size())
                return false;
        }
        return true;
    };
    return save(path, fill, error);
}

bool rename(const QString &from, const QString &to, QString *error)
{
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        return complainOfSystem(to, error);
    return keepFolder(folderOf(to), error);
}

bool pointLink(const QString &link, const QString &target, QString *error)
{
    const QString next = link + QStringLiteral(".next");
    QFile::remove(next);
    if (::symlink(QFile::encodeName(target).constData(), QFile::encodeName(next).constData()) != 0)
        return complainOfSystem(next, error);
    return rename(next, link, error);
}

} // namespace DurableFiles
