// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QtGlobal>

/// What the whole program has asked the heap for, on whichever thread; a program that links this counts.
namespace CountedAllocations {

qint64 calls();
qint64 bytes();

} // namespace CountedAllocations
