// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

namespace HIDCommunicator {

/// Whether a HID report descriptor declares reports with the ID \a reportId. False for a descriptor that is
/// cut short before it does.
bool declaresReportId(const QByteArray &descriptor, quint8 reportId);

} // namespace HIDCommunicator
