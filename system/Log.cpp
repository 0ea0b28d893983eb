// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "system/Log.h"

#include <QLoggingCategory>

namespace Log {

namespace {
Q_LOGGING_CATEGORY(panelCategory, "quillon.panel")
Q_LOGGING_CATEGORY(hidCategory, "quillon.hid")
Q_LOGGING_CATEGORY(netCategory, "quillon.net")
Q_LOGGING_CATEGORY(flashCategory, "quillon.flash")

QDebug lineOf(const QLoggingCategory &category)
{
    return QMessageLogger().debug(category).noquote();
}
} // namespace

QDebug panel()
{
    return lineOf(panelCategory());
}

QDebug panelWarning()
{
    return QMessageLogger().warning(panelCategory()).noquote();
}

QDebug hid()
{
    return lineOf(hidCategory());
}

QDebug net()
{
    return lineOf(netCategory());
}

QDebug flash()
{
    return lineOf(flashCategory());
}

} // namespace Log
