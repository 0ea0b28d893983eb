// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

namespace host {

/// Lets free fonts stand in for the two families that the panel asks for, where those are not installed.
/// Needs the application object.
void substituteMissingFonts();

} // namespace host
