#pragma once

#include "panel/FirmwareUpgradeWidget.h"

#include <QLatin1String>

namespace QuillonFirmwareUpgrade {

/// USB vendor ID of the whole device family.
constexpr int kVendorId = 0x352F;

/// Everything outside the screens that differs between the device models.
struct ModelIdentifiers {
    QLatin1String code; ///< as it appears in file names and log lines
    int pcNormalPid;
    int pcDfuPid; ///< the boot loader of the PC chip
    int otgNormalPid;
    int otgDfuPid; ///< the boot loader of the OTG chip; R1 uses the product ID of normal mode
    QLatin1String pcVersionPath; ///< on the update server
    QLatin1String otgVersionPath;
    QLatin1String pcImagePath;
    QLatin1String otgImagePath;
};

/// The row of \a model; any model other than R1 gets the row of R2.
const ModelIdentifiers &identifiersOf(DeviceModel model);

} // namespace QuillonFirmwareUpgrade
