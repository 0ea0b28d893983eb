// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace rig {

/// Whether one file may be run as a program, as a switch. On Windows, where what can be read can be run, the
/// file is held while it may not be, and nobody else can open it; that ends with this process.
class RunPermission {
public:
    /// The file need not exist.
    explicit RunPermission(const QString &path);
    ~RunPermission();
    RunPermission(const RunPermission &) = delete;
    RunPermission &operator=(const RunPermission &) = delete;

    bool isGranted() const;
    void set(bool granted);

private:
    QString m_path;
    [[maybe_unused]] void *m_held = nullptr; ///< on Windows
};

} // namespace rig
