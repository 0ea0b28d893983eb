// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Identity.h"

#include <QString>
#include <QVersionNumber>

namespace rig {

/// What the server says about a firmware, in both languages, several lines each: from 1.10.0 on more of them
/// than the panel has room for.
struct ReleaseNotes {
    QString chinese;
    QString english;
};

ReleaseNotes releaseNotes(Chip chip, const QVersionNumber &version);

} // namespace rig
