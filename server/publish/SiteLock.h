// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

namespace publish {

/// Keeps a second quillon-publish from changing the same site. The system lets go of it when the process
/// ends, however it ends.
class SiteLock {
public:
    SiteLock() = default;
    ~SiteLock();
    SiteLock(const SiteLock &) = delete;
    SiteLock &operator=(const SiteLock &) = delete;

    /// False, with one line in \a error, when another one has it or \a folder cannot be written.
    bool take(const QString &folder, QString *error);

private:
    int m_file = -1;
};

} // namespace publish
