// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

/// What the HID library sees of the system's device manager, whatever runs on this machine. To be told before
/// OrvikHIDManager::instance().
namespace MockUdevd {

void setRunning(bool running); ///< not running at first
bool running();
void setNodesSettled(bool settled); ///< whether it has given every node its owner and mode; at first it has
int questions(); ///< how often the library asked about a node
int eventsTaken(); ///< how many events about nodes the library has taken from its monitor
QByteArray monitoredGroup(); ///< whose events the library asked for: "udev" or "kernel"

} // namespace MockUdevd
