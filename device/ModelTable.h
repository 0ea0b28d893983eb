#pragma once

#include "device/DeviceModel.h"

#include <QLatin1String>
#include <QList>

namespace QuillonFirmwareUpgrade {

/// USB vendor ID of the whole device family.
constexpr int kVendorId = 0x352F;

/// Everything that differs between the device models.
struct ModelRow {
    DeviceModel model;
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

/// All models there are.
const QList<ModelRow> &modelRows();

/// The row of \a model; a value that is no model gets the row of R2.
const ModelRow &rowOf(DeviceModel model);

} // namespace QuillonFirmwareUpgrade
