// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "device/DeviceModel.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace QuillonFirmwareUpgrade {

/// What is remembered from one look at the bus to the next.
struct KnownDevice {
    DeviceModel model = DeviceModel::R2;
    int pcPid = 0; ///< the identity under which the PC chip was last seen; 0: never
    int otgPid = 0; ///< likewise for the OTG chip
};

/// A path of the bus that names a product ID.
struct BusInterface {
    enum class Kind { Foreign, PcNormal, PcBootLoader, OtgNormal, OtgBootLoader };

    QString path;
    QString productIdText; ///< the digits that the path names, in lower case
    int productId = 0; ///< 0 when they are no number
    Kind kind = Kind::Foreign;
    std::optional<DeviceModel>
        newModel; ///< what a boot loader tells, where it is not the model served so far
};

/// What one list of paths showed.
struct BusScan {
    QList<BusInterface> interfaces; ///< in the order of the list
    KnownDevice known; ///< as it is to be remembered now

    bool found(BusInterface::Kind kind) const;
    /// The last one of the list; empty without one.
    QString pathOf(BusInterface::Kind kind) const;
};

/// Judges \a paths one after the other. A boot loader of a PC chip tells its model beyond doubt, and the
/// paths behind it are judged by that model.
BusScan scanBus(const QStringList &paths, const KnownDevice &known);

} // namespace QuillonFirmwareUpgrade
