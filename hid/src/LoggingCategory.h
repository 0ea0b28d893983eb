// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QLoggingCategory>

namespace HIDCommunicator {

/// "quillon.hid", which hosts filter by; any thread.
Q_DECLARE_LOGGING_CATEGORY(hidCategory)

} // namespace HIDCommunicator
