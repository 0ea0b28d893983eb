// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/RunPermission.h"

#include <QDir>

#include <windows.h>

namespace rig {

RunPermission::RunPermission(const QString &path)
    : m_path(path)
{
}

RunPermission::~RunPermission()
{
    set(true);
}

bool RunPermission::isGranted() const
{
    return !m_held;
}

void RunPermission::set(bool granted)
{
    if (granted == isGranted())
        return;
    if (granted) {
        CloseHandle(m_held);
        m_held = nullptr;
        return;
    }
    // Others may still rename it, for a tool can be missing at the same time.
    const QString native = QDir::toNativeSeparators(m_path);
    const HANDLE held
        = CreateFileW(reinterpret_cast<const wchar_t *>(native.utf16()), GENERIC_READ, FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (held != INVALID_HANDLE_VALUE)
        m_held = held;
}

} // namespace rig
