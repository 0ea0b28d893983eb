// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/HeldFile.h"

#include <QDir>

#ifdef Q_OS_WIN

#include <windows.h>

namespace {
constexpr DWORD kShares[] = {0, FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE};
} // namespace

HeldFile::HeldFile(const QString &path, Share share)
    : m_handle(CreateFileW(reinterpret_cast<const wchar_t *>(QDir::toNativeSeparators(path).utf16()),
                           GENERIC_READ, kShares[int(share)], nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr))
{
    if (m_handle == INVALID_HANDLE_VALUE)
        qFatal("cannot hold %s", qPrintable(path));
}

HeldFile::~HeldFile()
{
    CloseHandle(m_handle);
}

#else

HeldFile::HeldFile(const QString &path, Share)
{
    if (!QFile::exists(path))
        qFatal("cannot hold %s", qPrintable(path));
}

HeldFile::~HeldFile() = default;

#endif
