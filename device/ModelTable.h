// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "device/DeviceModel.h"

#include <QLatin1String>
#include <QList>

#include <chrono>

namespace QuillonFirmwareUpgrade {

/// USB vendor ID of the whole device family.
constexpr int kVendorId = 0x352F;

/// One of the two chips of a model.
struct ChipRow {
    int normalPid;
    int dfuPid; ///< in its boot loader
    QLatin1String versionPath; ///< on the update server
    QLatin1String imagePath;
    QLatin1String movie; ///< which cable goes where; a file of the picture resources
    const char *hint; ///< the same in words, as the translation catalogue knows them
    std::chrono::milliseconds
        flashDelay; ///< for it to settle, and for the user to see which cable goes where
};

/// Everything that differs between the device models.
struct ModelRow {
    DeviceModel model;
    QLatin1String code; ///< as it appears in file names and log lines
    ChipRow pc;
    ChipRow otg;
};

/// All models there are.
const QList<ModelRow> &modelRows();

/// The row of \a model; a value that is no model gets the row of R2.
const ModelRow &rowOf(DeviceModel model);

} // namespace QuillonFirmwareUpgrade
