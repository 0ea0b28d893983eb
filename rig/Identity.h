// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

/// The simulated side of the wire: a device, its bus, an update server and everything that can go wrong with
/// them.
namespace rig {

enum class Model { R1, R2 };

/// One of the device's two processors. Each has its own port, so a chip also names the cable that goes into
/// it.
enum class Chip { Pc, Otg };

constexpr int kVendorId = 0x352F;

/// What one chip of one model is called on the bus and on the update server.
struct ChipIdentity {
    Model model;
    Chip chip;
    int normalPid; ///< product ID while the firmware runs
    int bootLoaderPid; ///< product ID while the chip sits in its boot loader
    const char *project; ///< "proj_name" of the server's version query
    int imageNumber; ///< "f_sn" of the server's download
};

/// All that the rig has to know of a model.
struct ModelIdentity {
    Model model;
    const char *name;
    ChipIdentity pc;
    ChipIdentity otg;
};

/// Every model once, in the order of the enumeration.
const QList<ModelIdentity> &modelTable();
const QList<ChipIdentity> &allIdentities(); ///< the chips of all models
const ChipIdentity &identityOf(Model model, Chip chip);
const ChipIdentity *identityWith(int productId); ///< in either state; null when nobody has it

QStringList modelNames(); ///< "R1", "R2"
QString nameOf(Model model);
QString nameOf(Chip chip); ///< "pc" or "otg"
std::optional<Model> modelNamed(QStringView name); ///< either case
std::optional<Chip> chipNamed(QStringView name); ///< either case

} // namespace rig
