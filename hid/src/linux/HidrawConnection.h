// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "Descriptor.h"

#include <HIDCommunicator/HidTransport.h>

#include <memory>

namespace HIDCommunicator {

/// Reads and writes whole reports through \a node, an open hidraw device, and closes it at the end. Null when
/// it is closed already.
std::unique_ptr<HidConnection> connectHidraw(Descriptor node);

} // namespace HIDCommunicator
