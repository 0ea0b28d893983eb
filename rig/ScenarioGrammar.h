// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/ScenarioStage.h"

#include <QList>
#include <QStringList>

namespace rig {

/// One form of statement. The pattern holds plain words, gaps "<kind>", optional gaps "[<kind>]" and, last,
/// "<kind>..." for one or more.
struct StatementForm {
    const char *pattern;
    const char *help; ///< one line for people
    StageAct act;
};

/// Every form once. Where two forms fit a line the first one counts.
const QList<StatementForm> &grammar();

/// One part of a pattern.
struct FormPart {
    QString word; ///< a plain word, or the kind of a gap
    bool gap = false;
    bool optional = false;
    bool repeated = false;
};
QList<FormPart> partsOf(const StatementForm &form);

} // namespace rig
