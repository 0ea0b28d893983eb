// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QDebug>

/// Lines for those who support the product. Pieces and values are separated by one blank, texts stand without
/// quotes, flags print as true or false. Each concern is a logging category of Qt's, printed unless the
/// host's or the machine's filter rules say otherwise. Any thread.
namespace Log {

QDebug panel(); ///< quillon.panel: screens, plan, sequence
QDebug panelWarning(); ///< the same, for what should not happen
QDebug hid(); ///< quillon.hid: the bus, and what the device says
QDebug net(); ///< quillon.net: the update server
QDebug flash(); ///< quillon.flash: the flashing tool

} // namespace Log
