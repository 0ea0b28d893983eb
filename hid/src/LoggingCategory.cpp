// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "LoggingCategory.h"

namespace HIDCommunicator {

Q_LOGGING_CATEGORY(hidCategory, "quillon.hid")

} // namespace HIDCommunicator
