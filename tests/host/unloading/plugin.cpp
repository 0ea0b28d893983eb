// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A host's plug-in that brings the panel along.
#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

extern "C" Q_DECL_EXPORT QWidget *createPanel()
{
    return new QuillonFirmwareUpgrade::FirmwareUpgradeWidget;
}
