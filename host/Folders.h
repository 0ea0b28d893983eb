// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QTemporaryDir>

#include <memory>

namespace host {

/// The folders that the panel, the flashing tool and Qt write to. A simulation gets fresh ones that vanish
/// with this object, so that it never meets the files of a real device. Make it after the application object:
/// the window system looks into the real home as it starts.
class Folders {
public:
    enum class Kind { OfTheUser, ForSimulation };

    explicit Folders(Kind kind);

    bool isValid() const; ///< false: there is no room for temporary files

private:
    std::unique_ptr<QTemporaryDir> m_temporary;
};

} // namespace host
