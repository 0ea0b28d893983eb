// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "CollectionFile.h"

#include <HIDCommunicator/HidTransport.h>

#include <memory>

namespace HIDCommunicator {

/// Reads and writes whole reports through \a file and closes it at the end. Null when it is closed already.
std::unique_ptr<HidConnection> connectCollection(CollectionFile file);

} // namespace HIDCommunicator
