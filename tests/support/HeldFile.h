// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>

/// A file that is open somewhere else, as it is for a virus scanner or an editor, for as long as the object
/// lives. Windows then lets nobody open it for more than is shared; other systems keep nobody out.
class HeldFile {
public:
    enum class Share { Nothing, Reading, ReadingAndWriting };

    /// The file has to exist.
    HeldFile(const QString &path, Share share);
    ~HeldFile(); // NOLINT(performance-trivially-destructible): on Windows it closes the file
    HeldFile(const HeldFile &) = delete;
    HeldFile &operator=(const HeldFile &) = delete;

private:
    [[maybe_unused]] void *m_handle = nullptr; ///< on Windows
};
