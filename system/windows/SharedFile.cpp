// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/SharedFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <windows.h>

#include <fcntl.h>
#include <io.h>

namespace SharedFile {

namespace {
constexpr QIODevice::OpenMode kForReading = QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered;

/// As QFile asks for it: without the limit on a path's length.
QString nativePath(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    return native.startsWith(QStringLiteral("\\\\")) ? native : QStringLiteral("\\\\?\\") + native;
}

HANDLE openExisting(const QString &native, DWORD access, DWORD share)
{
    return CreateFileW(reinterpret_cast<const wchar_t *>(native.utf16()), access, share, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}
} // namespace

// QFile alone would not share the right to delete: a tool that replaces its file would fail now and then.
bool openForReading(QFile &file)
{
    const HANDLE handle = openExisting(nativePath(file.fileName()), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    const int descriptor = _open_osfhandle(intptr_t(handle), _O_RDONLY);
    if (descriptor < 0) {
        CloseHandle(handle);
        return false;
    }
    if (file.open(descriptor, kForReading, QFileDevice::AutoCloseHandle))
        return true;
    _close(descriptor);
    return false;
}

bool isHeld(const QString &path)
{
    const QString native = nativePath(path);
    // As QFile opens it.
    const HANDLE handle
        = openExisting(native, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
    if (handle == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_SHARING_VIOLATION;
    CloseHandle(handle);
    return false;
}

} // namespace SharedFile
