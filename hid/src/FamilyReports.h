// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

namespace HIDCommunicator {

/// Whether something on the bus carries reports with the family's ID. Unknown where the system did not
/// answer, for example because the device is just leaving: it is given the benefit of the doubt, after those
/// that are known to. In rising order of preference.
enum class FamilyReports { No, Unknown, Yes };

} // namespace HIDCommunicator
