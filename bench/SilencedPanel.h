// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QLoggingCategory>

/// What a panel says of itself goes nowhere, as in a host that has no use for it.
inline void silencePanel()
{
    QLoggingCategory::setFilterRules(QStringLiteral("quillon.*=false"));
}
