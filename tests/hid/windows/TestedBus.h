// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "SystemBusTest.h"

using TestedBus = SystemBusTest;
