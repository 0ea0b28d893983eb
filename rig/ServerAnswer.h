// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FaultBoard.h"
#include "rig/HttpMessages.h"
#include "rig/Identity.h"

#include <QByteArray>
#include <QVersionNumber>

namespace rig {

/// What a request is about.
struct RequestSubject {
    RequestKind kind;
    Model model;
    Chip chip;
    QVersionNumber version; ///< the newest one
};

/// The answer to a request for \a subject, with every fault that strikes it. \a target is where it came from.
HttpAnswer answerTo(const RequestSubject &subject, const QByteArray &target, FaultBoard &faults);
HttpAnswer errorPage(int status, const QByteArray &reason);

} // namespace rig
