# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

"""The four connection animations of the upgrade panel, drawn as SVG frames and packed as GIF."""
