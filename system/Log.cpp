// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/Log.h"

#include <QLoggingCategory>

#include <optional>

namespace Log {

namespace {
Q_LOGGING_CATEGORY(panelCategory, "quillon.panel")
Q_LOGGING_CATEGORY(hidCategory, "quillon.hid")
Q_LOGGING_CATEGORY(netCategory, "quillon.net")
Q_LOGGING_CATEGORY(flashCategory, "quillon.flash")

Line lineOf(const QLoggingCategory &category)
{
    if (!category.isDebugEnabled())
        return Line(std::nullopt);
    return Line(QMessageLogger().debug(category).noquote());
}
} // namespace

Line panel()
{
    return lineOf(panelCategory());
}

Line panelWarning()
{
    if (!panelCategory().isWarningEnabled())
        return Line(std::nullopt);
    return Line(QMessageLogger().warning(panelCategory()).noquote());
}

Line hid()
{
    return lineOf(hidCategory());
}

Line net()
{
    return lineOf(netCategory());
}

Line flash()
{
    return lineOf(flashCategory());
}

} // namespace Log
