// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QtGlobal>

// Sizes in bytes, wide enough for every product.
constexpr qint64 kKiB = 1024;
constexpr qint64 kMiB = 1024 * kKiB;
